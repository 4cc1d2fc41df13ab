// What recorders keep of the calls of all threads and connections, in order.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "calls/Interceptor.h"
#include "norv/simulator/OperationRecorder.h"
#include "recording/Recording.h"

namespace norv::simulator {

class Tape {
 public:
  // Notes down what is asked, whatever becomes of it.
  void Note(const Call& call);
  const std::vector<Operation>& Operations() const { return operations_; }
  void ForgetOperations();

  // Keeps a call that is about to be made; its number serves to add to it. On Windows, what this takes would change the
  // code that the call leaves, if it came after the call.
  std::size_t Begin(const Call& call);
  void End(std::size_t number, Outcome outcome, std::string folder);

  // The code that LastSystemCode gave belongs to the last call of this thread, or stands alone where there was none.
  void AddLeftCode(const LeftCode& left);

  // To the query of number `query`: whether there was a further object, what was thrown instead, and what a property of
  // the object gave. A property keeps what it gave first.
  void AddNext(std::size_t query, bool found);
  void AddEnd(std::size_t query, const Thrown& thrown);
  void AddText(std::size_t query, const std::string& property, TextRead read);
  void AddNumber(std::size_t query, const std::string& property, NumberRead read);

  std::vector<RecordedCall> Calls() const;

 private:
  PropertyReads* Property(std::size_t query, const std::string& property);

  mutable std::mutex mutex_;
  std::vector<Operation> operations_;
  std::vector<RecordedCall> calls_;
  std::map<std::thread::id, std::size_t> last_;
};

// Notes down what is asked.
std::shared_ptr<Hook> NotingHook(std::shared_ptr<Tape> tape);

// Keeps what is answered, too.
std::shared_ptr<Hook> RecordingHook(std::shared_ptr<Tape> tape);

}  // namespace norv::simulator
