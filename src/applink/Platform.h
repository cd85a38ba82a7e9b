// The socket calls that differ between macOS and Linux, behind task-level functions.
#pragma once

namespace orvo {

// Makes writes on `fd` fail with EPIPE instead of raising SIGPIPE. 0, or the errno value.
int suppressSigpipe(int fd);

// The user id the peer of a connected Unix-domain socket runs under. 0, or the errno value.
int peerUserId(int fd, unsigned& uid);

}  // namespace orvo
