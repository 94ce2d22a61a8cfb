// The random generator per thread, and TypeName of automation objects described by type information.
#include "brannoc.h"
#include "library/BuiltinArguments.h"
#include "support/EngineLibrary.h"
#include "support/TestComObject.h"
#include "values/TextForm.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace brannoc {
namespace {

// The first numbers Rnd gives on a thread that never called Randomize.
std::vector<float> FirstNumbers(int count)
{
    std::vector<float> numbers;
    const BuiltinRecord& rnd = *FindBuiltin(Token::Rnd);
    const bool given[1] = {false};
    Variant none[1];
    for (int i = 0; i < count; ++i) {
        Variant result;
        if (!FoldBuiltin(rnd, none, given, 1, result) || result.Tag() != VT_R4)
            return {};
        numbers.push_back(result.Single());
    }
    return numbers;
}

TEST(Rnd, EachThreadStartsFromSeedOne)
{
    std::vector<float> first;
    std::vector<float> second;
    std::thread one([&] { first = FirstNumbers(4); });
    std::thread two([&] { second = FirstNumbers(4); });
    one.join();
    two.join();
    ASSERT_EQ(first.size(), 4u);
    EXPECT_EQ(first, second);
    // seed = seed * 214013 + 2531011; the number is bits 16 to 30 of the seed over 32768.
    const std::vector<float> expected = {41 / 32768.0f, 18467 / 32768.0f, 6334 / 32768.0f, 26500 / 32768.0f};
    EXPECT_EQ(first, expected);
}

// An automation object whose type information is the engine type library's _BasicObject, or that has
// none.
class DescribedObject final : public testing::TestComObject<IDispatch> {
public:
    explicit DescribedObject(ITypeInfo* info) : m_info(info) {}
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override
    {
        *count = m_info ? 1 : 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override
    {
        *info = m_info;
        if (!m_info)
            return E_NOTIMPL;
        m_info->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

private:
    ITypeInfo* m_info;
};

std::wstring TypeNameOf(IDispatch* object)
{
    Variant value[1];
    value[0].SetObject(object);
    const bool given[1] = {true};
    Variant result;
    if (!FoldBuiltin(*FindBuiltin(Token::TypeName), value, given, 1, result) || result.Tag() != VT_BSTR)
        return L"(failed)";
    return std::wstring(result.StringView());
}

TEST(TypeName, ObjectsAreNamedByTheirTypeInformation)
{
    test::EngineLibrary library;
    ITypeLib* types = nullptr;
    ASSERT_EQ(S_OK, LoadTypeLibEx(library.Path().c_str(), REGKIND_NONE, &types));
    ITypeInfo* info = nullptr;
    ASSERT_EQ(S_OK, types->GetTypeInfoOfGuid(IID__BasicObject, &info));
    DescribedObject described(info);
    DescribedObject bare(nullptr);
    EXPECT_EQ(TypeNameOf(&described), L"BasicObject");
    EXPECT_EQ(TypeNameOf(&bare), L"Object");
    EXPECT_EQ(TypeNameOf(nullptr), L"Nothing");
    // The debugging display uses the same name.
    Variant value;
    value.SetObject(&described);
    std::wstring shown;
    ASSERT_TRUE(WriteDebug(shown, value));
    EXPECT_EQ(shown.substr(0, 15), L"[BasicObject@0x");
    info->Release();
    types->Release();
}

} // namespace
} // namespace brannoc
