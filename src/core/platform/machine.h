#pragma once

#include <cstdint>
#include <string>

namespace ZEMO::Core {

/// Name of a processor architecture, one of the PROCESSOR_ARCHITECTURE_ values.
std::string cpuTypeName(uint16_t architecture);

/// `bytes` in GiB by single precision arithmetic, rounded to two decimals as printf would.
double roundedGiB(uint64_t bytes);

}  // namespace ZEMO::Core
