#pragma once

/// ZEMO_API marks everything that crosses the boundary of ZEMOUIFramework.dll. The boundary carries C++ types
/// (std::string, std::shared_ptr, std::function, exceptions), so library and game are built with the same compiler.
#if defined(ZEMO_NO_EXPORTS)
#define ZEMO_API
#elif defined(ZEMO_BUILDING_LIBRARY)
#define ZEMO_API __declspec(dllexport)
#else
#define ZEMO_API __declspec(dllimport)
#endif
