// Client conversations over the DDE management library: DDEInitiate, DDERequest, DDEExecute, DDEPoke,
// DDETerminate and DDETerminateAll. Each execution thread has ten channels; a channel holds its own DDE
// instance, the conversation, and the interpreter whose macro opened it.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
#include "host/AnsiText.h"
#include "library/BuiltinArguments.h"
#include "values/ValueError.h"

#include <windows.h>
#include <ddeml.h>

#include <array>
#include <string>

namespace brannoc {

namespace {

struct DdeChannel {
    DWORD instance = 0;
    HCONV conversation = nullptr;
    const Interpreter* owner = nullptr;

    bool IsOpen() const { return instance != 0; }
    void Close()
    {
        if (conversation)
            DdeDisconnect(conversation);
        if (instance)
            DdeUninitialize(instance);
        *this = DdeChannel{};
    }
};

class ChannelTable final {
public:
    static constexpr int kChannels = 10;
    ~ChannelTable()
    {
        for (DdeChannel& channel : m_channels)
            channel.Close();
    }
    // The open channel of that number; null after raising 10132.
    DdeChannel* Open(long number)
    {
        if (number < 1 || number > kChannels || !m_channels[static_cast<std::size_t>(number - 1)].IsOpen()) {
            (void)RaiseValueError(kErrorBadChannel);
            return nullptr;
        }
        return &m_channels[static_cast<std::size_t>(number - 1)];
    }
    // The number of a free channel, or 0.
    int Free() const
    {
        for (int i = 0; i < kChannels; ++i) {
            if (!m_channels[static_cast<std::size_t>(i)].IsOpen())
                return i + 1;
        }
        return 0;
    }
    DdeChannel& At(int number) { return m_channels[static_cast<std::size_t>(number - 1)]; }

private:
    std::array<DdeChannel, kChannels> m_channels{};
};

ChannelTable& Channels()
{
    thread_local ChannelTable table;
    return table;
}

// The client receives nothing it uses and answers no transaction.
HDDEDATA CALLBACK ClientCallback(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) { return nullptr; }

bool RaiseDdeError(DWORD instance)
{
    switch (DdeGetLastError(instance)) {
    case DMLERR_DATAACKTIMEOUT:
    case DMLERR_EXECACKTIMEOUT:
    case DMLERR_POKEACKTIMEOUT: return RaiseValueError(kErrorDdeTimeOut);
    case DMLERR_SERVER_DIED: return RaiseValueError(kErrorDdeServerDied);
    default: return RaiseValueError(kErrorDdeFailed);
    }
}

// A string handle of the instance, freed when it goes.
class DdeString final {
public:
    DdeString(DWORD instance, std::wstring_view text)
        : m_instance(instance), m_handle(DdeCreateStringHandleA(instance, AnsiFromWide(text).c_str(), CP_WINANSI))
    {
    }
    ~DdeString()
    {
        if (m_handle)
            DdeFreeStringHandle(m_instance, m_handle);
    }
    DdeString(const DdeString&) = delete;
    DdeString& operator=(const DdeString&) = delete;
    HSZ Get() const { return m_handle; }

private:
    DWORD m_instance;
    HSZ m_handle;
};

bool ChannelArgument(BuiltinArguments& arguments, DdeChannel*& channel)
{
    LONG number = 0;
    if (!arguments.Long(0, number))
        return false;
    channel = Channels().Open(number);
    return channel != nullptr;
}

// The time-out argument in seconds as milliseconds (5 seconds when left out).
bool TimeOut(BuiltinArguments& arguments, int index, DWORD& milliseconds)
{
    double seconds = 5.0;
    if (arguments.IsGiven(index) && !arguments.Double(index, seconds))
        return false;
    if (seconds < 0 || seconds > 2147483.0)
        return RaiseValueError(kErrorInvalidArgument);
    milliseconds = static_cast<DWORD>(seconds * 1000.0);
    return true;
}

bool DdeInitiate(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view application;
    std::wstring_view topic;
    if (!arguments.String(0, application) || !arguments.String(1, topic))
        return false;
    const int number = Channels().Free();
    if (number == 0)
        return RaiseValueError(kErrorTooManyConversations);
    DWORD instance = 0;
    if (DdeInitializeA(&instance, &ClientCallback, APPCLASS_STANDARD | APPCMD_CLIENTONLY, 0) != DMLERR_NO_ERROR)
        return RaiseValueError(kErrorDdeNotAvailable);
    HCONV conversation = nullptr;
    {
        DdeString service(instance, application);
        DdeString subject(instance, topic);
        conversation = DdeConnect(instance, service.Get(), subject.Get(), nullptr);
    }
    if (!conversation) {
        const bool raised = RaiseDdeError(instance);
        DdeUninitialize(instance);
        return raised;
    }
    DdeChannel& channel = Channels().At(number);
    channel.instance = instance;
    channel.conversation = conversation;
    channel.owner = Interpreter::Current();
    result.SetInteger(static_cast<SHORT>(number));
    return true;
}

bool DdeExecute(BuiltinArguments& arguments, BuiltinResult&)
{
    DdeChannel* channel = nullptr;
    std::wstring_view command;
    DWORD timeOut = 0;
    if (!ChannelArgument(arguments, channel) || !arguments.String(1, command) || !TimeOut(arguments, 2, timeOut))
        return false;
    std::string bytes = AnsiFromWide(command);
    const HDDEDATA done = DdeClientTransaction(reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size() + 1),
                                               channel->conversation, nullptr, 0, XTYP_EXECUTE, timeOut, nullptr);
    return done != nullptr || RaiseDdeError(channel->instance);
}

bool DdePoke(BuiltinArguments& arguments, BuiltinResult&)
{
    DdeChannel* channel = nullptr;
    std::wstring_view item;
    std::wstring_view data;
    DWORD timeOut = 0;
    if (!ChannelArgument(arguments, channel) || !arguments.String(1, item) || !arguments.String(2, data) ||
        !TimeOut(arguments, 3, timeOut))
        return false;
    std::string bytes = AnsiFromWide(data);
    DdeString name(channel->instance, item);
    const HDDEDATA done = DdeClientTransaction(reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size() + 1),
                                               channel->conversation, name.Get(), CF_TEXT, XTYP_POKE, timeOut, nullptr);
    return done != nullptr || RaiseDdeError(channel->instance);
}

bool DdeRequest(BuiltinArguments& arguments, BuiltinResult& result)
{
    DdeChannel* channel = nullptr;
    std::wstring_view item;
    DWORD timeOut = 0;
    if (!ChannelArgument(arguments, channel) || !arguments.String(1, item) || !TimeOut(arguments, 2, timeOut))
        return false;
    HDDEDATA data = nullptr;
    {
        DdeString name(channel->instance, item);
        data = DdeClientTransaction(nullptr, 0, channel->conversation, name.Get(), CF_TEXT, XTYP_REQUEST, timeOut,
                                    nullptr);
    }
    if (!data)
        return RaiseDdeError(channel->instance);
    std::string bytes(DdeGetData(data, nullptr, 0, 0), '\0');
    if (!bytes.empty())
        DdeGetData(data, reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), 0);
    DdeFreeDataHandle(data);
    // The text ends at its terminating zero.
    bytes.resize(bytes.find('\0') == std::string::npos ? bytes.size() : bytes.find('\0'));
    return result.SetString(WideFromAnsi(bytes));
}

bool DdeTerminate(BuiltinArguments& arguments, BuiltinResult&)
{
    DdeChannel* channel = nullptr;
    if (!ChannelArgument(arguments, channel))
        return false;
    channel->Close();
    return true;
}

bool DdeTerminateAll(BuiltinArguments&, BuiltinResult&)
{
    const Interpreter* running = Interpreter::Current();
    ChannelTable& table = Channels();
    for (int number = 1; number <= ChannelTable::kChannels; ++number) {
        DdeChannel& channel = table.At(number);
        if (channel.IsOpen() && channel.owner == running)
            channel.Close();
    }
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::DDEInitiate, ResultKind::kInteger, "$$", "App Topic", 0, 0, &DdeInitiate),
    Function(Token::DDERequest, ResultKind::kString, "%$#", "ChanNum Item Timeout", 0, 0b100, &DdeRequest),
    Instruction(Token::DDEExecute, "%$#", "ChanNum Command Timeout", 0b100, &DdeExecute),
    Instruction(Token::DDEPoke, "%$$#", "ChanNum Item Data Timeout", 0b1000, &DdePoke),
    Instruction(Token::DDETerminate, "%", "ChanNum", 0, &DdeTerminate),
    Instruction(Token::DDETerminateAll, "", "", 0, &DdeTerminateAll),
};

} // namespace

BuiltinGroup DdeFunctions() { return kRecords; }

} // namespace brannoc
