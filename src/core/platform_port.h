#pragma once

#include <winsock2.h>

#include <windows.h>

#include <string>

namespace ZEMO::Core {

/// The system's calls behind GetDynamicPort(). They are replaceable because their failures can't be provoked.
struct PortCalls {
    decltype(&::WSAStartup) startup = &::WSAStartup;
    decltype(&::socket) open = &::socket;
    decltype(&::bind) bindTo = &::bind;
    decltype(&::getsockname) name = &::getsockname;
    decltype(&::closesocket) close = &::closesocket;
    decltype(&::WSACleanup) cleanup = &::WSACleanup;
};

/// A free port of 127.0.0.1 in decimal, empty on failure; logs either. Any thread.
std::string findFreePort(const PortCalls& calls);

}  // namespace ZEMO::Core
