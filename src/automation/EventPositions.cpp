#include "automation/EventPositions.h"

#include "values/ComRef.h"

#include <ocidl.h>
#include <olectl.h>

namespace brannoc::automation {
namespace {

// Some controls hand out their IOleObject only through this interface's first method.
const GUID kOleObjectProviderId = {0x8a701da0, 0x4feb, 0x101b, {0xa8, 0x2e, 0x08, 0x00, 0x2b, 0x2b, 0x23, 0x37}};

struct IOleObjectProvider : IUnknown {
    virtual HRESULT __stdcall GetOleObject(REFIID id, void** object) = 0;
};

ComRef<IOleObject> OleObjectOf(IDispatch* source)
{
    ComRef<IOleObject> object;
    ComRef<IUnknown> provider;
    if (SUCCEEDED(source->QueryInterface(kOleObjectProviderId, reinterpret_cast<void**>(provider.Out()))) && provider) {
        if (FAILED(static_cast<IOleObjectProvider*>(provider.Get())
                       ->GetOleObject(IID_IOleObject, reinterpret_cast<void**>(object.Out()))))
            object = ComRef<IOleObject>();
        return object;
    }
    if (FAILED(source->QueryInterface(IID_IOleObject, reinterpret_cast<void**>(object.Out()))))
        object = ComRef<IOleObject>();
    return object;
}

// The point in the container's units, when the source sits in a control site that converts it.
bool TransformThroughSite(IDispatch* source, LONG x, LONG y, POINTF& converted)
{
    ComRef<IOleObject> object = OleObjectOf(source);
    ComRef<IOleClientSite> site;
    ComRef<IOleControlSite> controlSite;
    if (!object || FAILED(object->GetClientSite(site.Out())) || !site ||
        FAILED(site->QueryInterface(IID_IOleControlSite, reinterpret_cast<void**>(controlSite.Out()))) || !controlSite)
        return false;
    POINTL point{x, y};
    return SUCCEEDED(controlSite->TransformCoords(&point, &converted,
                                                  XFORMCOORDS_POSITION | XFORMCOORDS_HIMETRICTOCONTAINER));
}

// The argument for the parameter at position: a positional one, or the named one for it.
VARIANT** ArgumentFor(GivenArguments& given, int position)
{
    if (static_cast<std::size_t>(position) < given.positional.size())
        return &given.positional[position];
    for (auto& named : given.named) {
        if (named.first == position)
            return &named.second;
    }
    return nullptr;
}

bool ReadInteger(VARIANT* argument, LONG& value)
{
    VARIANT number;
    VariantInit(&number);
    if (FAILED(VariantChangeType(&number, FollowByRefChain(argument), 0, VT_I4)))
        return false;
    value = number.lVal;
    return true;
}

} // namespace

void ConvertPositionArguments(IDispatch* source, const PositionParameters& positions, GivenArguments& given,
                              Variant (&converted)[2])
{
    if (positions.x < 0)
        return;
    VARIANT** x = ArgumentFor(given, positions.x);
    VARIANT** y = ArgumentFor(given, positions.x + 1);
    if (!x || !y || !*x || !*y || FollowByRefChain(*x)->vt == VT_R4 || FollowByRefChain(*y)->vt == VT_R4)
        return;
    LONG xValue = 0;
    LONG yValue = 0;
    if (!ReadInteger(*x, xValue) || !ReadInteger(*y, yValue))
        return;
    POINTF point{static_cast<FLOAT>(xValue), static_cast<FLOAT>(yValue)};
    if (!source || !TransformThroughSite(source, xValue, yValue, point))
        point = POINTF{static_cast<FLOAT>(xValue), static_cast<FLOAT>(yValue)};
    if (positions.pixels) {
        HDC screen = GetDC(nullptr);
        const int perInchX = screen ? GetDeviceCaps(screen, LOGPIXELSX) : 0;
        const int perInchY = screen ? GetDeviceCaps(screen, LOGPIXELSY) : 0;
        if (screen)
            ReleaseDC(nullptr, screen);
        if (perInchX > 0 && perInchY > 0) {
            point.x = point.x * 2540 / perInchX;
            point.y = point.y * 2540 / perInchY;
        }
    }
    converted[0].SetSingle(point.x);
    converted[1].SetSingle(point.y);
    *x = &converted[0].Raw();
    *y = &converted[1].Raw();
}

} // namespace brannoc::automation
