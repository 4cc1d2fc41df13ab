#pragma once

#include <csignal>

namespace norv::tool {

// Lets `handler` handle `signal`, with the flags of sigaction().
void Handle(int signal, void (*handler)(int), int flags);

// The same, unless the signal is ignored: whoever starts the program so, as nohup does, wants it to go on.
void HandleUnlessIgnored(int signal, void (*handler)(int), int flags);

}  // namespace norv::tool
