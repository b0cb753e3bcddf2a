#pragma once
// Handing memory that was freed back to the system. The C library keeps large freed blocks for
// reuse; a resident program that has just let go of pictures should not stay at its peak.

namespace fw {
void returnFreedMemory();
} // namespace fw
