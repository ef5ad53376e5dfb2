#include "host/TextStyle.h"

#include "host/Platform.h"

namespace Host {

namespace {

/// Attributes of ECMA-48, section 8.3.117.
const char* attributeOf(Emphasis emphasis)
{
    switch (emphasis) {
    case Emphasis::Good:
        return "32";
    case Emphasis::Bad:
        return "31";
    case Emphasis::Notable:
        return "33";
    default:
        return "1";
    }
}

} // namespace

std::string emphasised(const std::string& text, Emphasis emphasis, const TextStyle& style)
{
    return style.colours ? std::string("\x1b[") + attributeOf(emphasis) + 'm' + text + "\x1b[0m" : text;
}

TextStyle outputStyle()
{
    TextStyle style;
    if (isTerminal(Stream::Output))
        style.width = terminalWidth(Stream::Output);
    style.colours = showsColours(Stream::Output) && !environmentVariable("NO_COLOR");
    return style;
}

} // namespace Host
