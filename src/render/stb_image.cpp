// The image decoder's one implementation. Only the formats of our own assets are built in, and no picture beyond a
// sensible icon or bitmap is decoded; its file calls take UTF-8 paths.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // its optimiser looks into a header that is not ours
#endif
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_BMP
#define STBI_MAX_DIMENSIONS 8192
#define STBI_WINDOWS_UTF8
#include <stb_image.h>
