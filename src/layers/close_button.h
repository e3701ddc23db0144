#pragma once
#include <windows.h>
#include <functional>
namespace ZEMO::UI {
class IXbtn { public: virtual bool hitTest(const POINT&, const RECT&)=0; virtual void onResize(const RECT&)=0; virtual void onMouseMove(const POINT&, const RECT&)=0; virtual void setClickCallback(std::function<void()>)=0; virtual void click()=0; virtual ~IXbtn()=default; };
class XButton : public IXbtn { public: explicit XButton(HWND){}; bool hitTest(const POINT&, const RECT&) override {return false;} void onResize(const RECT&) override {} void onMouseMove(const POINT&, const RECT&) override {} void setClickCallback(std::function<void()>) override {} void click() override {} };
}
