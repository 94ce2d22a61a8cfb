// A read-only data object with one format, CF_TEXT in global memory.
#include "ide/TextDataObject.h"

#include "ide/OleObjectBase.h"

#include <shlobj.h>

#include <cstring>

namespace brannoc::ide {

namespace {

bool IsText(const FORMATETC* format)
{
    return format && format->cfFormat == CF_TEXT && (format->tymed & TYMED_HGLOBAL) &&
           format->dwAspect == DVASPECT_CONTENT;
}

class TextDataObject final : public OleObjectBase<IDataObject, IID_IDataObject> {
public:
    explicit TextDataObject(std::string text) : m_text(std::move(text)) {}

    // A failed allocation answers STG_E_MEDIUMFULL, as a drop target expects from a full medium.
    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override
    {
        if (!medium)
            return E_POINTER;
        if (!IsText(format))
            return DV_E_FORMATETC;
        HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, m_text.size() + 1);
        void* bytes = memory ? GlobalLock(memory) : nullptr;
        if (!bytes) {
            if (memory)
                GlobalFree(memory);
            return STG_E_MEDIUMFULL;
        }
        std::memcpy(bytes, m_text.c_str(), m_text.size() + 1);
        GlobalUnlock(memory);
        medium->tymed = TYMED_HGLOBAL;
        medium->hGlobal = memory;
        medium->pUnkForRelease = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return DATA_E_FORMATETC; }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override { return IsText(format) ? S_OK : DV_E_FORMATETC; }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC* out) override
    {
        if (out)
            out->ptd = nullptr;
        return DATA_S_SAMEFORMATETC;
    }
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) override
    {
        if (!formats)
            return E_POINTER;
        *formats = nullptr;
        if (direction != DATADIR_GET)
            return E_NOTIMPL;
        FORMATETC text = TextFormat();
        return SHCreateStdEnumFmtEtc(1, &text, formats);
    }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return OLE_E_ADVISENOTSUPPORTED; }

private:
    std::string m_text;
};

} // namespace

FORMATETC TextFormat() { return FORMATETC{CF_TEXT, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL}; }

IDataObject* CreateTextDataObject(std::string text) { return new (std::nothrow) TextDataObject(std::move(text)); }

bool ReadDataObjectText(IDataObject* data, std::string& text)
{
    FORMATETC format = TextFormat();
    STGMEDIUM medium{};
    if (!data || FAILED(data->GetData(&format, &medium)))
        return false;
    const char* chars = static_cast<const char*>(GlobalLock(medium.hGlobal));
    const bool read = chars != nullptr;
    if (read)
        text.assign(chars, strnlen(chars, GlobalSize(medium.hGlobal)));
    GlobalUnlock(medium.hGlobal);
    ReleaseStgMedium(&medium);
    return read;
}

} // namespace brannoc::ide
