#pragma once
// Counts that decide whether the library may be unloaded: live engine objects and class locks.
namespace brannoc {

void AddObjectReference();
void ReleaseObjectReference();
long ObjectCount();

// Adds one class lock for count >= 1, removes one for count < 0, leaves it for 0.
void ChangeClassLock(short count);
long ClassLockCount();

// True when no engine object exists and no class lock is held.
bool CanUnloadLibrary();

} // namespace brannoc
