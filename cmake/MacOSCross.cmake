# Cross-compiles for macOS from Linux with zig's clang 19, LLVM libc++ and macOS SDK headers.
# scripts/macos-cross.sh fetches the toolchain into the cache folder and builds the libraries we
# link (utf8proc, GoogleTest, Google Benchmark) there for each architecture; this file only points
# CMake at them. The architecture comes from ORVO_MACOS_ARCH (arm64 or x86_64).
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 21)  # macOS 12, the oldest we support
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVO_MACOS_ARCH)
if(NOT ORVO_MACOS_ARCH MATCHES "^(arm64|x86_64)$")
    message(FATAL_ERROR "ORVO_MACOS_ARCH must be arm64 or x86_64, not '${ORVO_MACOS_ARCH}'")
endif()
set(CMAKE_SYSTEM_PROCESSOR ${ORVO_MACOS_ARCH})

if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(_orvoCache "$ENV{XDG_CACHE_HOME}/orvo-agent-mcp/macos")
else()
    set(_orvoCache "$ENV{HOME}/.cache/orvo-agent-mcp/macos")
endif()
set(_orvoTools "${_orvoCache}/bin")
if(NOT EXISTS "${_orvoTools}/${ORVO_MACOS_ARCH}-c++")
    message(FATAL_ERROR "No macOS cross toolchain in ${_orvoCache}: run scripts/macos-cross.sh")
endif()
set(CMAKE_C_COMPILER "${_orvoTools}/${ORVO_MACOS_ARCH}-cc")
set(CMAKE_CXX_COMPILER "${_orvoTools}/${ORVO_MACOS_ARCH}-c++")
set(CMAKE_AR "${_orvoTools}/ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${_orvoTools}/ranlib" CACHE FILEPATH "")

# Apple's libc++ marks what each macOS release lacks; LLVM's hides those marks unless asked, and
# without them a call that would not link on an older Mac compiles here.
set(CMAKE_C_FLAGS_INIT "")
set(CMAKE_CXX_FLAGS_INIT
    "-U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS -isystem ${CMAKE_CURRENT_LIST_DIR}/macos-cross")

set(CMAKE_FIND_ROOT_PATH "${_orvoCache}/${ORVO_MACOS_ARCH}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
