#include "decode/OutputBuffer.h"

namespace norv::tool {

void OutputBuffer::Grow(std::size_t size) {
  const std::size_t used = View().size();
  storage_.resize((used + size) * 2);
  end_ = storage_.data() + used;
  limit_ = storage_.data() + storage_.size();
}

}  // namespace norv::tool
