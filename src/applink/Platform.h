// The socket calls that differ between macOS and Linux, behind task-level functions.
#pragma once

#include <cstddef>

namespace orvo {

// Makes writes on `fd` fail with EPIPE instead of raising SIGPIPE. 0, or the errno value.
int suppressSigpipe(int fd);

// Like write(2) on a socket, never raising SIGPIPE; with `dontWait`, sends only what fits now and
// fails with EAGAIN when nothing does.
long sendWithoutSigpipe(int fd, const char* bytes, std::size_t size, bool dontWait);

// The user id the peer of a connected Unix-domain socket runs under. 0, or the errno value.
int peerUserId(int fd, unsigned& uid);

}  // namespace orvo
