// The language object's interface in the engine's type library lists every built-in with the
// parameter names that named arguments use.
#include "brannoc.h"
#include "library/BuiltinTable.h"
#include "support/EngineLibrary.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <string>

namespace brannoc {
namespace {

class BasicObjectInfo final {
public:
    BasicObjectInfo()
    {
        test::EngineLibrary library;
        if (SUCCEEDED(LoadTypeLibEx(library.Path().c_str(), REGKIND_NONE, &m_library)))
            m_library->GetTypeInfoOfGuid(IID__BasicObject, &m_info);
    }
    ~BasicObjectInfo()
    {
        if (m_info)
            m_info->Release();
        if (m_library)
            m_library->Release();
    }
    ITypeInfo* Info() const { return m_info; }

private:
    ITypeLib* m_library = nullptr;
    ITypeInfo* m_info = nullptr;
};

std::wstring Wide(std::string_view text) { return std::wstring(text.begin(), text.end()); }

TEST(BuiltinTypeLibrary, ListsEveryBuiltinWithItsParameters)
{
    BasicObjectInfo basic;
    ASSERT_NE(basic.Info(), nullptr);
    ForEachBuiltin([&](const BuiltinRecord& record) {
        // The about box is the language object's own member 1, described with its default Timeout
        // (the host type-library test checks it).
        if (record.keyword == Token::AboutBrannocBasic)
            return;
        const std::wstring name = Wide(KeywordText(record.keyword));
        SCOPED_TRACE(std::string(KeywordText(record.keyword)));
        LPOLESTR names[1] = {const_cast<LPOLESTR>(name.c_str())};
        MEMBERID id = 0;
        ASSERT_EQ(S_OK, basic.Info()->GetIDsOfNames(names, 1, &id));
        EXPECT_EQ(id, TokenNumber(record.keyword));
        UINT index = 0;
        FUNCDESC* function = nullptr;
        for (;; ++index) {
            ASSERT_EQ(S_OK, basic.Info()->GetFuncDesc(index, &function));
            if (function->memid == id)
                break;
            basic.Info()->ReleaseFuncDesc(function);
        }
        // The dispatch view of the dual interface lists no result parameter.
        const int retval = record.IsInstruction() || function->funckind == FUNC_DISPATCH ? 0 : 1;
        EXPECT_EQ(function->cParams, record.ParameterCount() + retval);
        EXPECT_EQ(function->cParamsOpt, record.TakesAnyCount() ? -1 : 0);
        for (int i = 0; i < record.ParameterCount() && i < function->cParams; ++i) {
            const bool optional = (function->lprgelemdescParam[i].paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
            EXPECT_EQ(optional, record.IsOptional(i) && !record.TakesAnyCount()) << "parameter " << i;
        }
        basic.Info()->ReleaseFuncDesc(function);
        BSTR read[16] = {};
        UINT count = 0;
        ASSERT_EQ(S_OK, basic.Info()->GetNames(id, read, 16, &count));
        ASSERT_EQ(count, static_cast<UINT>(record.ParameterCount() + 1));
        EXPECT_EQ(std::wstring(read[0]), name);
        for (int i = 0; i < record.ParameterCount(); ++i)
            EXPECT_EQ(std::wstring(read[i + 1]), Wide(record.ParameterName(i)));
        for (UINT i = 0; i < count; ++i)
            SysFreeString(read[i]);
    });
}

} // namespace
} // namespace brannoc
