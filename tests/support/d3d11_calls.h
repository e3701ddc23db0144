#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// What a swap chain's buffer held when it was presented.
struct PresentedPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  ///< bytes R, G, B, A, rows from top to bottom
    /// As a page's frame has it, bytes B, G, R, A; 0 outside.
    uint32_t bgra(int x, int y) const;
};

/// Writes down every call that this program makes on objects of Direct3D 11 and DXGI while it lives, with its
/// arguments, in order, from all threads, and then really makes it. The objects are the system's own: a function of
/// this class stands in their tables, which all objects of a class share. Also answers a call with a failure of the
/// test's choice, which is then not made. One at a time.
///
/// Objects are named in the lines by what made them and a number ("target1"), null is "null".
class D3D11Calls {
public:
    D3D11Calls();
    ~D3D11Calls();
    D3D11Calls(const D3D11Calls&) = delete;
    D3D11Calls& operator=(const D3D11Calls&) = delete;

    /// The lines since the last call.
    std::vector<std::string> take();
    /// How many of the lines that are not taken yet begin with `start`.
    size_t count(const std::string& start) const;

    /// From now on calls whose line begins with `start` fail with `result`; S_OK ends that. For "GetProcAddress NAME"
    /// the function is not found.
    void fail(const std::string& start, HRESULT result);
    /// Runs inside calls whose line begins with `start`, before they are made. Null ends that.
    void during(const std::string& start, std::function<void()> work);

    /// From now on Map hands out this memory in place of the texture's, with rows `pitch` bytes apart. Null ends that.
    void mapInto(void* memory, uint32_t pitch);

    /// The last picture that was presented, and how many were.
    PresentedPicture presented() const;
    size_t presents() const;
    /// False after the time-out.
    bool waitForPresents(size_t more) const;

    /// References to the last device that was made: its own holders, and one of each object that lives on it.
    unsigned long deviceReferences() const;

private:
    struct Hooks;
    std::unique_ptr<Hooks> hooks;
};

}  // namespace ZEMO::Test
