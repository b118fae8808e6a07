#include "Pipeline.h"

#include <exception>
#include <memory>
#include <new>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <velmara/Exception.h>

#include "Interrupt.h"

namespace VelmaraCommand {

namespace {

/// A message on its way. As many as that for each thread keep all of them busy while one is slow.
struct Item {
    std::uint64_t number = 0;
    FoundMessage message;
    Analysed analysed;
};
constexpr std::size_t _itemsPerThread = 8;

using ItemRef = std::shared_ptr<Item>;

class Scan {
public:
    Scan(MessageSource& source, ScanContext const& context, ScanOptions const& options, Analyse const& analyse,
         LineOutput& output, Progress& progress)
        : m_source(source), m_context(context), m_options(options), m_analyse(analyse), m_output(output),
          m_progress(progress)
    {}

    /// The next message that is ours, null at the end.
    ItemRef next()
    {
        while (!interrupted()) {
            auto item = std::make_shared<Item>();
            item->number = m_nextNumber;
            bool const ours = item->number % m_options.shards == m_options.shard && item->number >= m_options.first;
            // What an interruption cut short must not pass for whole.
            if (!m_source.next(item->message, ours) || interrupted()) break;
            ++m_nextNumber;
            if (m_nextNumber == m_options.first && m_options.checkLast) m_options.checkLast(item->message);
            if (ours) return item;
        }
        return nullptr;
    }

    void analyse(Item& item) const
    {
        if (!item.message.failure.empty()) return;
        try {
            item.message.bytes.open(m_context.collect.largestInMemory);
            if (item.message.length == 0) item.message.length = item.message.bytes.length();
            item.analysed = m_analyse(item.message, item.number);
        } catch (Velmara::Exception const& failure) {
            item.message.failure = failure.asString();
        } catch (std::bad_alloc const&) {
            item.message.failure = "there is not enough memory for what it is made of";
        } catch (std::exception const& failure) {
            item.message.failure = failure.what();
        }
        item.message.bytes = MessageBytes();
    }

    void write(Item const& item)
    {
        if (!item.message.failure.empty()) {
            ++m_result.failed;
            m_context.complain(Severity::Unreadable, placeOf(item.message.file, item.message.entry),
                               item.message.failure);
        }
        m_result.capped += item.analysed.capped;
        m_output.write(item.analysed.line);
        m_progress.messageDone();
    }

    ScanResult const& result() const { return m_result; }

private:
    // used by the first stage
    MessageSource& m_source;
    std::uint64_t m_nextNumber = 0;
    // used by all
    ScanContext const& m_context;
    ScanOptions const& m_options;
    Analyse const& m_analyse;
    // used by the last stage
    LineOutput& m_output;
    Progress& m_progress;
    ScanResult m_result;
};

} // namespace

ScanResult scanAll(MessageSource& source, ScanContext const& context, ScanOptions const& options,
                   Analyse const& analyse, LineOutput& output, Progress& progress)
{
    using namespace oneapi::tbb;
    Scan scan(source, context, options, analyse, output, progress);
    // Threads are ours to count even where there are fewer processors.
    global_control const limit(global_control::max_allowed_parallelism, options.threads);
    task_arena arena(static_cast<int>(options.threads));
    auto const take = [&](flow_control& flow) {
        ItemRef item = scan.next();
        if (!item) flow.stop();
        return item;
    };
    auto const analyseOne = [&](ItemRef item) {
        scan.analyse(*item);
        return item;
    };
    arena.execute([&] {
        parallel_pipeline(options.threads * _itemsPerThread,
                          make_filter<void, ItemRef>(filter_mode::serial_in_order, take) &
                              make_filter<ItemRef, ItemRef>(filter_mode::parallel, analyseOne) &
                              make_filter<ItemRef, void>(filter_mode::serial_in_order,
                                                         [&](ItemRef const& item) { scan.write(*item); }));
    });
    output.flush();
    return scan.result();
}

} // namespace VelmaraCommand
