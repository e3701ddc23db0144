#pragma once
#include <vector>
#include <cstdint>
namespace ZEMO::UI { struct CloseImage { std::vector<uint8_t> rgba; int width=0,height=0; }; inline CloseImage loadCloseImage(){return {};} }
