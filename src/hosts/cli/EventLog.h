// The script host's event sink: every event that fires becomes a line of
// text, `ShapeNumberAdded(ShapeType=3, ShapeNumber=1)`, kept until taken.
#pragma once

#include "control/EventSink.h"

#include <string>
#include <vector>

namespace bvx::script {

class EventLog : public EventRecorder {
public:
    // The lines recorded since the last call, oldest first.
    std::vector<std::string> Take();

    void OnEvent(const members::EventRow& event, std::span<const double> args) override;

private:
    std::vector<std::string> lines_;
};

} // namespace bvx::script
