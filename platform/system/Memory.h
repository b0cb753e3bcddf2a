#pragma once
// Handing memory that was freed back to the system. The C library keeps large freed blocks for
// reuse; a resident program that has just let go of pictures should not stay at its peak.

namespace fw {
// Blocks of a megabyte and more (pictures) get pages of their own, given back when freed. Left
// to itself the C library raises that bound to the largest block freed so far, and then keeps
// every later picture's memory after it is freed. Called first thing in main().
void keepLargeBlocksApart();
void returnFreedMemory();
} // namespace fw
