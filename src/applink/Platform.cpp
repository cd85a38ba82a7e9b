// The socket calls that differ between macOS and Linux, behind task-level functions.
#include "applink/Platform.h"

#include <cerrno>

#include <sys/socket.h>
#include <sys/types.h>
#include <unistd.h>

#if defined(__APPLE__)
#elif defined(__linux__)
#else
#error "orvo-agent-mcp builds for macOS and Linux only"
#endif

namespace orvo {

int suppressSigpipe(int fd) {
#if defined(__APPLE__)
    const int on = 1;
    return ::setsockopt(fd, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) == 0 ? 0 : errno;
#elif defined(__linux__)
    // Linux has no per-socket switch; every send passes MSG_NOSIGNAL instead.
    (void)fd;
    return 0;
#endif
}

int peerUserId(int fd, unsigned& uid) {
#if defined(__APPLE__)
    uid_t peerUid = 0;
    gid_t peerGid = 0;
    if (::getpeereid(fd, &peerUid, &peerGid) != 0) {
        return errno;
    }
    uid = peerUid;
    return 0;
#elif defined(__linux__)
    ucred credentials{};
    socklen_t length = sizeof credentials;
    if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
        return errno;
    }
    uid = credentials.uid;
    return 0;
#endif
}

}  // namespace orvo
