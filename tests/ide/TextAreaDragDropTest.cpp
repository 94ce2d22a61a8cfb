// OLE drag and drop of text: the data object a drag offers, text dropped on the control from outside,
// a selection dragged to another place of the same text (one undo step), and a click inside the
// selection that does not move.
#include "TextAreaFixture.h"

#include "ide/OleObjectBase.h"
#include "ide/TextDataObject.h"
#include "values/ComRef.h"

using brannoc::ComRef;
using brannoc::test::TextAreaFixture;
using namespace brannoc::ide;

namespace {

// A drop source that drops at once: the button is up when the drag starts.
class DropAtOnce final : public OleObjectBase<IDropSource, IID_IDropSource> {
public:
    HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override
    {
        if (escape)
            return DRAGDROP_S_CANCEL;
        return (keys & MK_LBUTTON) ? S_OK : DRAGDROP_S_DROP;
    }
    HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }
};

class TextAreaDragDrop : public TextAreaFixture {
protected:
    POINT PointOfPosition(int line, int column) const
    {
        // The caret rectangle message answers screen terms for the caret; move the caret there first.
        GoTo(line, column);
        RECT caret{};
        Send(TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&caret));
        return POINT{caret.left, caret.top + 2};
    }
};

TEST_F(TextAreaDragDrop, TheDataObjectOffersTheTextAsCfText)
{
    ComRef<IDataObject> data = ComRef<IDataObject>::Adopt(CreateTextDataObject("Dim x\r\n"));
    ASSERT_TRUE(data);
    FORMATETC text = TextFormat();
    EXPECT_EQ(S_OK, data->QueryGetData(&text));
    FORMATETC other{CF_UNICODETEXT, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    EXPECT_EQ(DV_E_FORMATETC, data->QueryGetData(&other));
    std::string read;
    ASSERT_TRUE(ReadDataObjectText(data.Get(), read));
    EXPECT_EQ("Dim x\r\n", read);
    ComRef<IEnumFORMATETC> formats;
    ASSERT_EQ(S_OK, data->EnumFormatEtc(DATADIR_GET, formats.Out()));
    FORMATETC first{};
    ULONG fetched = 0;
    EXPECT_EQ(S_OK, formats->Next(1, &first, &fetched));
    EXPECT_EQ(CF_TEXT, first.cfFormat);
    EXPECT_EQ(S_FALSE, formats->Next(1, &first, &fetched));
}

TEST_F(TextAreaDragDrop, TextDroppedFromOutsideIsInsertedWhereTheMouseIs)
{
    SetText("first\r\nsecond\r\n");
    const POINT target = PointOfPosition(1, 3);
    GoTo(0, 0);
    SetCursorPos(target.x + 1, target.y);
    ComRef<IDataObject> data = ComRef<IDataObject>::Adopt(CreateTextDataObject("XY"));
    ComRef<IDropSource> source = ComRef<IDropSource>::Adopt(new DropAtOnce);
    DWORD effect = DROPEFFECT_NONE;
    EXPECT_EQ(DRAGDROP_S_DROP, DoDragDrop(data.Get(), source.Get(), DROPEFFECT_COPY, &effect));
    EXPECT_EQ(static_cast<DWORD>(DROPEFFECT_COPY), effect);
    EXPECT_EQ("first\r\nsecXYond\r\n", Text());
    EXPECT_EQ("XY", [&] {
        std::string selected(static_cast<size_t>(Send(TAM_GETSELTEXT)) + 1, '\0');
        selected.resize(static_cast<size_t>(Send(TAM_GETSELTEXT, selected.size(), reinterpret_cast<LPARAM>(selected.data()))));
        return selected;
    }()) << "the dropped text is selected";
}

TEST_F(TextAreaDragDrop, DraggingTheSelectionMovesItAsOneUndoStep)
{
    SetText("alpha beta\r\ngamma\r\n");
    const POINT target = PointOfPosition(1, 5);
    const POINT inside = [&] {
        POINT point = PointOfPosition(0, 2);
        ScreenToClient(m_textArea, &point);
        return point;
    }();
    Send(EM_SETSEL, 0, 6); // "alpha "
    SetCursorPos(target.x + 1, target.y);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(inside.x, inside.y));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(inside.x + 40, inside.y + 30));
    Pump();
    EXPECT_EQ("beta\r\ngammaalpha \r\n", Text());
    Send(EM_UNDO);
    EXPECT_EQ("alpha beta\r\ngamma\r\n", Text()) << "one undo restores both places";
}

TEST_F(TextAreaDragDrop, AClickInsideTheSelectionWithoutMovingPlacesTheCaret)
{
    SetText("alpha beta\r\n");
    Send(EM_SETSEL, 0, 10);
    POINT inside = PointOfPosition(0, 3);
    Send(EM_SETSEL, 0, 10);
    ScreenToClient(m_textArea, &inside);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(inside.x + 1, inside.y));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(inside.x + 1, inside.y));
    DWORD start = 0, end = 0;
    Send(EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(3u, start);
    EXPECT_EQ(3u, end);
    EXPECT_EQ("alpha beta\r\n", Text());
}

} // namespace
