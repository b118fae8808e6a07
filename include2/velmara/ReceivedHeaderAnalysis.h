#pragma once

#include <list>

#include <velmara/IPAddress.h>
#include <velmara/Received.h>

namespace Velmara {

/// What someone found out about the route of a message. The library defines the record; whoever walks
/// the "Received" headers fills it and knows what its marks mean.
class VELMARA_EXPORT ReceivedHeaderAnalysis {
public:
    /// One "Received" header that was looked at.
    class VELMARA_EXPORT Record {
    public:
        /// Shares the text of the header; all marks are 0.
        Record(Received const& received);
        Record(Record const&) = default;
        Record& operator=(Record const&) = default;
        virtual ~Record();

        /// The header and what a check has to say of it.
        Received header;
        unsigned char marks[10] = {};
    };

    /// No records, a null address, all marks 0.
    ReceivedHeaderAnalysis();
    ReceivedHeaderAnalysis(ReceivedHeaderAnalysis const&) = default;
    ReceivedHeaderAnalysis& operator=(ReceivedHeaderAnalysis const&) = default;
    virtual ~ReceivedHeaderAnalysis();

    /// In the order in which they were looked at.
    std::list<Record> records;
    IPAddress address; // the one that was picked, such as that of the last host that is not trusted
    /// The caller's own.
    unsigned char marks[9] = {};
};

} // namespace Velmara
