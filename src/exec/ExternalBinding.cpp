#include "exec/ExternalBinding.h"

#include <windows.h>

namespace brannoc {

ExternalBinding::~ExternalBinding()
{
    if (m_library)
        FreeLibrary(static_cast<HMODULE>(m_library));
}

} // namespace brannoc
