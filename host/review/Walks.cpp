#include "host/review/Walks.h"

#include "host/review/Calls.h"
#include "host/review/ShownText.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace host {

namespace {

using simulation::CallRecord;

std::optional<std::string> Rest(const std::string& text, std::string_view start)
{
    return text.starts_with(start) ? std::optional(text.substr(start.size())) : std::nullopt;
}

// What stands before the line feed or blank.
std::string FirstWord(const std::string& text) { return text.substr(0, text.find_first_of("\n ")); }

std::size_t Number(const std::string& digits)
{
    std::size_t number = 0;
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

// Takes the events of the walk of one endpoint, in order.
class WalkReader {
public:
    void Take(const std::string& message)
    {
        lastIsMessage_ = true;
        noParts_ = message == "No parts were found!";
        if (const auto id = Rest(message, "Current device id:"))
            walk_.deviceId = *id;
        else if (message == "*** NEXT CONNECTOR ***")
            walk_.way.emplace_back();
        else if (message == "End of parts: replacing connector")
            AddPart(neighbour_, true);
        else if (message == "Found a Software_IO connector for current device")
            TakeSoftwareConnector();
        else if (message.starts_with("Starting to look for a connector"))
            asking_ = true;
        else if (const auto pin = Rest(message, "Using pin id:"))
            StartPin(FirstWord(*pin));
        else if (message == "Obtaining modules list...")
            speaks_ = true;
        else if (const auto count = Rest(message, "Modules count:"); count && !walk_.pins.empty())
            walk_.pins.back().count = Number(FirstWord(*count));
    }

    void Take(const CallRecord& call)
    {
        lastIsMessage_ = false;
        last_ = call;
        if (AnswerOf(call) == Answer::Failed)
            (call.call == "IKsControl::KsProperty" ? refused_ : failures_).push_back(call);
        if (walk_.way.empty() || !walk_.softwareConnector.empty())
            return;
        if (call.call == "IConnector::IsConnected")
            walk_.way.back().connector = call.object;
        else if (call.call == "IPart::EnumPartsIncoming" || call.call == "IPart::EnumPartsOutgoing")
            TakePart(call.object);
        else if (call.call == "IPart::GetPartType")
            neighbour_ = call.object;
        else if (call.call.ends_with("::SetSelection") && AnswerOf(call) == Answer::Given)
            switched_ = call.object;
    }

    // `failure`: the run ended in this walk.
    Walk Finish(const std::optional<std::string>& failure)
    {
        EndPin();
        const bool gave =
            std::any_of(walk_.pins.begin(), walk_.pins.end(), [](const AskedPin& pin) { return pin.why.empty(); });
        if (failure) {
            walk_.why = "the run ended here: " + Harmless(*failure);
        } else if (!gave) {
            walk_.why = asking_ ? WhyOfPins() : "passed over: " + WhyNoPins();
            walk_.toBlame = walk_.toBlame || (!asking_ && !failures_.empty());
        }
        return std::move(walk_);
    }

private:
    void TakePart(const std::string& part)
    {
        Stretch& stretch = walk_.way.back();
        if (stretch.entry.empty())
            stretch.entry = part;
        else
            AddPart(part, false);
        entered_ = part;
    }

    void AddPart(const std::string& part, bool connector)
    {
        if (!walk_.way.empty())
            walk_.way.back().parts.push_back({part, connector, part == switched_});
        switched_.clear();
    }

    void TakeSoftwareConnector()
    {
        if (walk_.way.empty())
            return;
        // The last connector is the end of the way, not the beginning of another stretch.
        walk_.softwareConnector = walk_.way.back().connector;
        walk_.way.pop_back();
    }

    void StartPin(const std::string& id)
    {
        EndPin();
        walk_.pins.push_back({id, std::nullopt, {}});
        speaks_ = false;
        last_.reset();
    }

    void EndPin()
    {
        if (walk_.pins.empty())
            return;
        AskedPin& pin = walk_.pins.back();
        const bool failed = last_ && AnswerOf(*last_) != Answer::Given && last_->call == "IKsControl::KsProperty";
        const std::string code = failed ? " (" + ResultText(*last_) + ")" : "";
        if (!speaks_)
            pin.why = (failed ? "does not speak the PP API" : "does not speak version 1 of the PP API") + code;
        else if (!pin.count) {
            pin.why =
                failed ? "its list of modules cannot be read" + code : "its list of modules is too long or too short";
            walk_.damaged = walk_.damaged || !failed;
            listRefused_ = listRefused_ || (failed && AnswerOf(*last_) == Answer::Failed);
        } else if (*pin.count == 0)
            pin.why = "lists no module";
    }

    std::string WhyOfPins()
    {
        const bool speaks = std::any_of(walk_.pins.begin(), walk_.pins.end(),
                                        [](const AskedPin& pin) { return !pin.why.starts_with("does not speak"); });
        walk_.toBlame = speaks ? listRefused_ : !refused_.empty() || (walk_.pins.empty() && !failures_.empty());
        const std::string refusal = refused_.empty() ? "" : "; " + FailureOf(refused_.back());
        if (walk_.pins.empty())
            return "no pin to ask: the driver names no offload pin, and no signal path leads to a software pin" +
                   (failures_.empty() ? "" : "; " + FailureOf(failures_.back())) + refusal;
        if (!speaks)
            return "no pin speaks the PP API" + refusal;
        std::string text;
        for (const AskedPin& pin : walk_.pins)
            text += (text.empty() ? "pin " : "; pin ") + pin.id + " " + pin.why;
        return text;
    }

    [[nodiscard]] std::string WhyNoPins() const
    {
        if (last_ && !lastIsMessage_ && AnswerOf(*last_) == Answer::Failed)
            return FailureOf(*last_);
        const std::string before = failures_.empty() ? "" : ", and " + FailureOf(failures_.back());
        if (last_ && last_->call == "IConnector::GetConnectedTo")
            return ShortName(last_->object) + " is connected to nothing, and no pin of a driver" + before;
        if (noParts_ || (last_ && last_->call == "IPartsList::GetCount"))
            return "no part leads on from " + ShortName(entered_) + before;
        return "the parts lead back to where they came from, or on without end" + before;
    }

    Walk walk_;
    std::vector<CallRecord> failures_;  // without those of the driver's filter
    std::vector<CallRecord> refused_;   // by the filter, not for the lack of what it is asked for
    bool listRefused_ = false;          // of them, a list of modules
    std::optional<CallRecord> last_;
    bool lastIsMessage_ = false;
    bool noParts_ = false;  // the last message
    bool asking_ = false;
    bool speaks_ = false;  // the pin that is being asked
    std::string entered_, neighbour_, switched_;
};

}  // namespace

std::vector<Walk> ReadWalks(const rehearsal::Outcome& outcome)
{
    std::vector<Walk> walks;
    std::optional<WalkReader> reader;
    const auto finish = [&](const std::optional<std::string>& failure) {
        if (reader)
            walks.push_back(reader->Finish(failure));
        reader.reset();
    };
    for (const rehearsal::Event& event : outcome.events) {
        if (const auto* const call = std::get_if<CallRecord>(&event)) {
            if (reader)
                reader->Take(*call);
            continue;
        }
        const std::string message = LogText(std::get<rehearsal::LogMessage>(event).text);
        if (message == "****** NEXT DEVICE ******") {
            finish(std::nullopt);
            reader.emplace();
        } else if (message == "AudioModulesUtils: DiscoverFwModules() completed successfully.") {
            finish(std::nullopt);
        } else if (reader) {
            reader->Take(message);
        }
    }
    finish(outcome.failure);
    return walks;
}

}  // namespace host
