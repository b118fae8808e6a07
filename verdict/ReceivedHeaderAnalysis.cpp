#include <velmara/ReceivedHeaderAnalysis.h>

namespace Velmara {

ReceivedHeaderAnalysis::Record::Record(Received const& received) : header(received)
{}

ReceivedHeaderAnalysis::Record::~Record() = default;

ReceivedHeaderAnalysis::ReceivedHeaderAnalysis() = default;

ReceivedHeaderAnalysis::~ReceivedHeaderAnalysis() = default;

} // namespace Velmara
