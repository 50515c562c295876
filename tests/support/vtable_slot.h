// The virtual-table slot a member function occupies, read from its pointer-to-member (the
// Itanium C++ ABI that g++ and clang use on x86: a virtual member's pointer holds 1 + the
// slot's byte offset). Code compiled against the headers calls virtual operations by slot, so
// tests pin the documented order with this. The destructor pair takes slots 0 and 1 when it is
// declared first.
#ifndef QUILLON_TESTS_VTABLE_SLOT_H
#define QUILLON_TESTS_VTABLE_SLOT_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

// -1 when the member is not virtual.
template <class Fn, class Class>
int vtableSlot(Fn Class::*member) {
  struct {
    uintptr_t ptr;
    ptrdiff_t adj;
  } rep;
  static_assert(sizeof(member) == sizeof(rep), "not an Itanium member-function pointer");
  memcpy(&rep, &member, sizeof rep);
  if ((rep.ptr & 1) == 0) return -1;
  return (int)((rep.ptr - 1) / sizeof(void*));
}

#endif
