#include "host/HandlerPrototype.h"

#include <cctype>
#include <string_view>
#include <vector>

namespace brannoc {
namespace {

constexpr int kMaxParameters = 31;

bool SameWord(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

// The words and punctuation of a declaration: names (with dots inside them), single characters, and
// a default value's text kept whole.
class PrototypeReader {
public:
    explicit PrototypeReader(std::string_view text) : m_text(text) {}

    void SkipBlanks()
    {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t'))
            ++m_at;
    }
    bool AtEnd()
    {
        SkipBlanks();
        return m_at >= m_text.size();
    }
    bool Accept(char c)
    {
        SkipBlanks();
        if (m_at < m_text.size() && m_text[m_at] == c) {
            ++m_at;
            return true;
        }
        return false;
    }
    // A name: a letter, then letters, digits, "_" and (for qualified type names) ".".
    std::string Name(bool dotted = false)
    {
        SkipBlanks();
        const std::size_t start = m_at;
        if (m_at >= m_text.size() || !std::isalpha(static_cast<unsigned char>(m_text[m_at])))
            return {};
        while (m_at < m_text.size() && (std::isalnum(static_cast<unsigned char>(m_text[m_at])) || m_text[m_at] == '_' ||
                                        (dotted && m_text[m_at] == '.')))
            ++m_at;
        return std::string(m_text.substr(start, m_at - start));
    }
    // Accepts the word when it comes next.
    bool Word(std::string_view word)
    {
        SkipBlanks();
        const std::size_t saved = m_at;
        const std::string next = Name();
        if (SameWord(next, word))
            return true;
        m_at = saved;
        return false;
    }
    char Suffix()
    {
        if (m_at < m_text.size() && std::string_view("%&!#@$").find(m_text[m_at]) != std::string_view::npos)
            return m_text[m_at++];
        return 0;
    }
    // A default value: everything up to the next "," or ")" outside quotes.
    bool SkipDefault()
    {
        SkipBlanks();
        bool quoted = false;
        const std::size_t start = m_at;
        while (m_at < m_text.size() && (quoted || (m_text[m_at] != ',' && m_text[m_at] != ')'))) {
            if (m_text[m_at] == '"')
                quoted = !quoted;
            ++m_at;
        }
        return !quoted && m_at > start;
    }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
};

constexpr const char* kLanguageTypes[] = {"Boolean", "Byte",   "Currency", "Date",    "Double", "Integer",
                                          "Long",    "Object", "Single",   "String",  "Variant"};

const char* SuffixType(char suffix)
{
    switch (suffix) {
    case '%': return "Integer";
    case '&': return "Long";
    case '!': return "Single";
    case '#': return "Double";
    case '@': return "Currency";
    case '$': return "String";
    default: return nullptr;
    }
}

// The type's name as the canonical text writes it: a language type in its own spelling, any other
// name (an object class) as given. Empty when the type is refused.
std::string TypeName(PrototypeReader& reader, bool& fixedString)
{
    std::string name = reader.Name(true);
    if (name.empty())
        return {};
    for (const char* known : kLanguageTypes) {
        if (SameWord(name, known)) {
            if (SameWord(name, "String") && reader.Accept('*'))
                fixedString = true;
            return known;
        }
    }
    return name;
}

struct ParameterText {
    std::string text;
    bool paramArray = false;
};

bool ReadParameter(PrototypeReader& reader, HandlerPrototype& prototype, int index, ParameterText& out)
{
    bool optional = reader.Word("Optional");
    bool byVal = false;
    if (reader.Word("ByVal"))
        byVal = true;
    else
        (void)reader.Word("ByRef");
    const bool paramArray = reader.Word("ParamArray");
    std::string name = reader.Name();
    if (name.empty())
        return false;
    std::string type;
    if (const char* suffixType = SuffixType(reader.Suffix()))
        type = suffixType;
    std::string array;
    if (reader.Accept('(')) {
        if (!reader.Accept(')'))
            return false;
        array = "()";
    }
    if (reader.Word("As")) {
        if (!type.empty())
            return false;
        bool fixedString = false;
        type = TypeName(reader, fixedString);
        if (type.empty() || fixedString)
            return false;
        const bool pixels = SameWord(type, "OLE_XPOS_PIXELS") || SameWord(type, "OLE_YPOS_PIXELS");
        if (pixels || SameWord(type, "OLE_XPOS_HIMETRIC") || SameWord(type, "OLE_YPOS_HIMETRIC")) {
            const bool x = std::toupper(static_cast<unsigned char>(type[4])) == 'X';
            (x ? prototype.xParameter : prototype.yParameter) = index;
            (x ? prototype.xInPixels : prototype.yInPixels) = pixels;
            type = "Single";
        }
    }
    if (type.empty())
        type = "Variant";
    if (reader.Accept('=')) {
        if (!optional || !reader.SkipDefault())
            return false;
    }
    out.paramArray = paramArray;
    out.text = std::string(byVal ? "ByVal " : "") + (optional ? "Optional " : "") + (paramArray ? "ParamArray " : "") +
               name + array + " As " + type;
    return true;
}

} // namespace

std::string HandlerModule::Qualify(const std::string& text) const
{
    std::string qualified = project.empty() ? std::string() : "<" + project + ">";
    if (!module.empty())
        qualified += module + "|";
    return qualified + text;
}

std::optional<HandlerModule> SplitHandlerModule(const std::string& text)
{
    HandlerModule parts;
    std::string_view rest(text);
    const std::size_t firstNonBlank = rest.find_first_not_of(" \t");
    rest.remove_prefix(firstNonBlank == std::string_view::npos ? rest.size() : firstNonBlank);
    if (!rest.empty() && rest[0] == '<') {
        const std::size_t close = rest.find('>');
        if (close == std::string_view::npos)
            return std::nullopt;
        parts.project = std::string(rest.substr(1, close - 1));
        rest.remove_prefix(close + 1);
    }
    if (const std::size_t bar = rest.find('|'); bar != std::string_view::npos) {
        std::string_view module = rest.substr(0, bar);
        while (!module.empty() && (module.back() == ' ' || module.back() == '\t'))
            module.remove_suffix(1);
        while (!module.empty() && (module.front() == ' ' || module.front() == '\t'))
            module.remove_prefix(1);
        if (module.empty())
            return std::nullopt;
        parts.module = std::string(module);
        rest.remove_prefix(bar + 1);
    }
    parts.rest = std::string(rest);
    return parts;
}

std::optional<HandlerPrototype> ParseHandlerPrototype(const std::string& text)
{
    const std::optional<HandlerModule> parts = SplitHandlerModule(text);
    if (!parts)
        return std::nullopt;
    HandlerPrototype prototype;
    prototype.project = parts->project;
    prototype.module = parts->module;
    const std::string_view rest(parts->rest);
    PrototypeReader reader(rest);
    if (reader.Word("Function"))
        prototype.isFunction = true;
    else if (!reader.Word("Sub"))
        return std::nullopt;
    prototype.name = reader.Name();
    if (prototype.name.empty())
        return std::nullopt;
    std::string resultSuffix;
    if (const char* suffixType = SuffixType(reader.Suffix())) {
        if (!prototype.isFunction)
            return std::nullopt;
        resultSuffix = suffixType;
    }
    std::vector<ParameterText> parameters;
    if (reader.Accept('(') && !reader.Accept(')')) {
        do {
            ParameterText parameter;
            if (parameters.size() >= kMaxParameters || (!parameters.empty() && parameters.back().paramArray) ||
                !ReadParameter(reader, prototype, static_cast<int>(parameters.size()), parameter))
                return std::nullopt;
            parameters.push_back(std::move(parameter));
        } while (reader.Accept(','));
        if (!reader.Accept(')'))
            return std::nullopt;
    }
    std::string result;
    if (prototype.isFunction) {
        result = resultSuffix.empty() ? "Variant" : resultSuffix;
        if (reader.Word("As")) {
            bool fixedString = false;
            result = resultSuffix.empty() ? TypeName(reader, fixedString) : std::string();
            if (result.empty() || fixedString)
                return std::nullopt;
        }
    }
    if (!reader.AtEnd())
        return std::nullopt;
    std::string canonical = prototype.module.empty() ? "Public " : "Private ";
    canonical += prototype.isFunction ? "Function " : "Sub ";
    canonical += prototype.name + "(";
    for (std::size_t i = 0; i < parameters.size(); ++i)
        canonical += (i ? ", " : "") + parameters[i].text;
    canonical += ")";
    if (prototype.isFunction)
        canonical += " As " + result;
    prototype.canonical = std::move(canonical);
    return prototype;
}

} // namespace brannoc
