// The same edits by an XML library, in its most faithful mode: CONFIGURATION SETTINGS PIPELINES.
#include <pugixml.hpp>

#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr unsigned int Faithful = pugi::parse_full | pugi::parse_ws_pcdata;

pugi::xml_node ByAttribute(const pugi::xml_document& document, const std::string& start)
{
    return document.find_node([&start](const pugi::xml_node& node) {
        for (const pugi::xml_attribute attribute : node.attributes())
            if (std::string_view(attribute.value()).starts_with(start))
                return true;
        return false;
    });
}

pugi::xml_node CommentWith(const pugi::xml_document& document, const std::string& text)
{
    return document.find_node([&text](const pugi::xml_node& node) {
        return node.type() == pugi::node_comment && std::string_view(node.value()).find(text) != std::string_view::npos;
    });
}

void SwitchOff(const pugi::xml_document& document, const std::string& name)
{
    const pugi::xml_node element = ByAttribute(document, name);
    std::ostringstream text;
    element.print(text, "", pugi::format_raw);
    element.parent().insert_child_before(pugi::node_comment, element).set_value(text.str().c_str());
    element.parent().remove_child(element);
}

void SwitchOn(const pugi::xml_document& document, const std::string& name)
{
    const pugi::xml_node comment = CommentWith(document, "Name=\"" + name);
    pugi::xml_document inner;
    inner.load_string(comment.value(), Faithful | pugi::parse_fragment);
    for (const pugi::xml_node child : inner.children())
        comment.parent().insert_copy_before(child, comment);
    comment.parent().remove_child(comment);
}

// In the element that has an attribute which begins so.
void SetValue(const pugi::xml_document& document, const std::string& start, const std::string& tag,
              const std::string& value)
{
    for (pugi::xml_attribute attribute : ByAttribute(document, start).attributes())
        if (std::string_view(attribute.value()).starts_with(tag))
            attribute.set_value((tag + value).c_str());
}

template <class Edits>
bool Rewrite(const char* path, Edits edits)
{
    pugi::xml_document document;
    if (!document.load_file(path, Faithful))
        return false;
    edits(document);
    return document.save_file(path, "", pugi::format_raw);
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    const bool done =
        Rewrite(argv[1],
                [](pugi::xml_document& document) {
                    SetValue(document, "DeviceId:", "DeviceId:", "func_01&ven_10ec&dev_0285&subsys_17aa22c6&rev_1000");
                    SwitchOff(document, "OrvexZan_Lfx_Mfx_Apo");
                    SwitchOn(document, "OrvexZan_Sfx_Apo");
                }) &&
        Rewrite(argv[2],
                [](pugi::xml_document& document) {
                    SwitchOff(document, "OrvexZan_Efx_Apo");
                    SwitchOn(document, "OrvexZan_SPATIALF");
                }) &&
        Rewrite(argv[3], [](pugi::xml_document& document) {
            SetValue(document, "ModuleGuid:", "ModuleGuid:", "{272b1e6e-1e98-4476-b3f0-1a4654be1089}");
            SetValue(document, "Subeffects_DefaultMode", "ParamId:", "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae}:5");
            SetValue(document, "Subeffects_SpeechMode", "ParamId:", "{6696ec45-ca78-414a-8666-C9ed965acfee}:5");
        });
    return done ? 0 : 1;
}
