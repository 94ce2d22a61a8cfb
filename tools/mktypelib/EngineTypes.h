#pragma once
#include "TypeLibraryWriter.h"

namespace mktypelib {

// Writes every type of the engine's type library; false (with writer.LastError()) on failure.
bool WriteEngineTypes(TypeLibraryWriter& writer);

} // namespace mktypelib
