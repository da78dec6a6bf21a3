#include "host/report/Html.h"
#include "host/report/Page.h"
#include "host/review/Calls.h"

#include <algorithm>

namespace host {

namespace {

using html::Element;
using html::Text;

// Not made harmless twice.
std::string EndpointName(const EndpointView& endpoint)
{
    return Text(endpoint.name.empty() ? endpoint.deviceId : endpoint.name);
}

// What a part is called within its device.
std::string LocalName(const std::string& globalId) { return globalId.substr(globalId.rfind('/') + 1); }
std::string DeviceName(const std::string& globalId) { return ShortName(globalId.substr(0, globalId.rfind('/'))); }

std::string Box(const char* kind, const std::string& title, const std::string& details, const char* look = nullptr)
{
    return Element(look == nullptr ? "li" : "li class=\"" + std::string(look) + "\"",
                   Element("b", kind) + title + details) +
           "\n";
}

std::string ConnectorBox(const char* kind, const std::string& connector, const EndpointView& endpoint)
{
    const bool own = connector.starts_with(endpoint.deviceId + "/");
    return Box(kind, html::Code(LocalName(connector)),
               Element("span", own ? "of the endpoint" : "of " + html::Code(DeviceName(connector))));
}

std::string FilterBox(const Stretch& stretch)
{
    std::string parts;
    for (const PassedPart& part : stretch.parts)
        parts += Element("span", std::string(part.connector ? "to connector " : "through part ") +
                                     html::Code(LocalName(part.globalId)) +
                                     (part.switched ? ", its selector switched" : ""));
    return Box("Filter", html::Code(DeviceName(stretch.entry)),
               Element("span", "in by connector " + html::Code(LocalName(stretch.entry))) + parts);
}

std::string PinBox(const AskedPin& pin, const EndpointView& endpoint)
{
    std::string details;
    for (const FoundModule& module : endpoint.firmware)
        if (module.pin == pin.id)
            details += Element(
                "span", Text(module.type + " " + ModuleName(module) + (module.makersName.empty() ? "" : " by Orvex")));
    if (!pin.why.empty())
        details += Element("span", Text(pin.why));
    return Box("Pin asked", html::Code(pin.id), details, details.empty() || !pin.why.empty() ? nullptr : "good");
}

std::string Chain(const EndpointView& endpoint, const Walk& walk)
{
    std::string boxes = Box("Endpoint", EndpointName(endpoint), "");
    for (const Stretch& stretch : walk.way) {
        if (!stretch.connector.empty())
            boxes += ConnectorBox("Connector", stretch.connector, endpoint);
        if (!stretch.entry.empty())
            boxes += FilterBox(stretch);
    }
    if (!walk.softwareConnector.empty())
        boxes += ConnectorBox("Software connector", walk.softwareConnector, endpoint);
    for (const AskedPin& pin : walk.pins)
        boxes += PinBox(pin, endpoint);
    if (!walk.why.empty())
        boxes += Box("Ended here", Text(walk.why), "", walk.toBlame || walk.damaged ? "bad" : "warn");
    return Element("ol class=\"chain\"", "\n" + boxes) + "\n";
}

std::string Modules(const char* term, const std::vector<FoundModule>& modules)
{
    if (modules.empty())
        return {};
    std::string list;
    for (const FoundModule& module : modules) {
        const std::string name = Text(module.type) + " " + html::Code(module.guid);
        list += Element("dd", module.makersName.empty()
                                  ? name
                                  : Element("strong", Text(module.type + " " + module.makersName) + " by Orvex ") +
                                        html::Code(module.guid));
    }
    return Element("dt", term) + list;
}

}  // namespace

std::string EndpointArticle(const EndpointView& endpoint)
{
    std::string content = Element("h3", EndpointName(endpoint)) +
                          Element("p", Element("span class=\"badge\"", Text(endpoint.flow)) + " " +
                                           Element("span class=\"badge\"", Text(endpoint.state)) + " " +
                                           Element("span class=\"soft\"", html::Code(endpoint.deviceId)));
    if (endpoint.walk)
        content += Chain(endpoint, *endpoint.walk);
    else
        content += Element("p", "No firmware modules: " + Text(endpoint.why));
    const std::string effects = Modules("Effects", endpoint.effects) + Modules("Wrapped effects", endpoint.wrapped);
    content += effects.empty()
                   ? Element("p class=\"soft\"", endpoint.effectsKnown ? "No effects." : "Its effects were not read.")
                   : Element("dl", effects);
    return Element("article", "\n" + content + "\n") + "\n";
}

}  // namespace host
