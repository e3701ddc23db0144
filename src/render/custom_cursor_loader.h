#pragma once
#include <windows.h>
namespace ZEMO::UI { class CustomCursorLoader { public: HCURSOR load(){return nullptr;} }; }
