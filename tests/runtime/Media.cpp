#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace Velmara {
namespace {

std::string _text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

/// A file that goes with its owner.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string const& content)
    {
        char path[] = "/tmp/velmara-test-XXXXXX";
        int const descriptor = mkstemp(path);
        close(descriptor);
        m_path = path;
        std::ofstream(m_path, std::ios::binary) << content;
    }
    ~TemporaryFile() { unlink(m_path.c_str()); }
    std::string const& path() const { return m_path; }
    std::string content() const
    {
        std::ifstream in(m_path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::string m_path;
};

/// Defines just what a subclass must, so that the defaults of the base show.
class Minimal : public MediaInImpl {
public:
    explicit Minimal(std::string const& bytes) : m_bytes(bytes) {}
    using MediaInImpl::read;
    bool atEnd() const override { return m_at == m_bytes.size(); }
    int peek() const override { return atEnd() ? -1 : static_cast<unsigned char>(m_bytes[m_at]); }
    int read(uchar_t* bytes, uint_t n) override
    {
        uint_t i = 0;
        for (; i < n && m_at < m_bytes.size(); ++i) bytes[i] = static_cast<uchar_t>(m_bytes[m_at++]);
        return static_cast<int>(i);
    }

private:
    std::string m_bytes;
    size_t m_at = 0;
};

enum Kind { Memory, MemoryOfABuffer, CallersMemory, File, Defaults };

/// The same rules hold for every stream.
class AnyMediaIn : public testing::TestWithParam<Kind> {
protected:
    MediaIn open(std::string const& bytes)
    {
        m_bytes = bytes;
        m_file = std::make_unique<TemporaryFile>(bytes);
        switch (GetParam()) {
        case Memory:
            return BufferMediaIn(bytes);
        case MemoryOfABuffer:
            return BufferMediaIn(Buffer(bytes.data(), static_cast<unsigned int>(bytes.size()), true));
        case CallersMemory:
            return BufferMediaIn(m_bytes.data(), m_bytes.size());
        case File:
            return FileMediaIn(m_file->path());
        case Defaults:
            break;
        }
        return MediaIn(new Minimal(bytes), false);
    }

    std::vector<std::string> lines(MediaIn in, int capacity)
    {
        std::vector<std::string> all;
        Buffer line(capacity, 0);
        for (in.readline(line); !line.isEmpty(); in.readline(line)) all.push_back(_text(line));
        return all;
    }

private:
    std::string m_bytes;
    std::unique_ptr<TemporaryFile> m_file;
};

TEST_P(AnyMediaIn, ReadlineGivesLinesWithTheirLineFeed)
{
    EXPECT_EQ((std::vector<std::string>{"a\r\n", "\n", "b\rc\n", "last"}), lines(open("a\r\n\nb\rc\nlast"), 100));
}

TEST_P(AnyMediaIn, ReadlineAtTheEndGivesAnEmptyBuffer)
{
    MediaIn in = open("x");
    Buffer line(10, 0);
    in.readline(line);
    EXPECT_EQ("x", _text(line));
    in.readline(line);
    EXPECT_TRUE(line.isEmpty());
    in.readline(line);
    EXPECT_TRUE(line.isEmpty());
}

TEST_P(AnyMediaIn, ReadlineCutsALongLineAtTheCapacity)
{
    std::vector<std::string> const pieces = lines(open(std::string(4999, 'x') + "\n"), 2048);
    ASSERT_EQ(3u, pieces.size());
    EXPECT_EQ(2048u, pieces[0].size());
    EXPECT_EQ(2048u, pieces[1].size());
    EXPECT_EQ(904u, pieces[2].size());
    EXPECT_EQ('\n', pieces[2].back());
}

TEST_P(AnyMediaIn, ReadlineReplacesOldContent)
{
    MediaIn in = open("new\nnext\n");
    Buffer line("old content", 11, true);
    in.readline(line);
    EXPECT_EQ("new\n", _text(line));
}

TEST_P(AnyMediaIn, ReadlineGivesABufferWithoutCapacity4096)
{
    MediaIn in = open(std::string(5000, 'x'));
    Buffer line;
    in.readline(line);
    EXPECT_EQ(4096u, line.length());
}

TEST_P(AnyMediaIn, ReadlineKeepsNulBytes)
{
    EXPECT_EQ((std::vector<std::string>{std::string("a\0b\n", 4)}), lines(open(std::string("a\0b\n", 4)), 100));
}

TEST_P(AnyMediaIn, BlockReadsDeliverUpToTheCount)
{
    MediaIn in = open("abc\ndef\nghi");
    Buffer block("old", 3, true);
    EXPECT_EQ(5, in.read(block, 5));
    EXPECT_EQ("abc\nd", _text(block));
    uchar_t bytes[4];
    EXPECT_EQ(4, in.read(bytes, 4));
    EXPECT_EQ("ef\ng", std::string(reinterpret_cast<char*>(bytes), 4));
    EXPECT_EQ(2, in.read(block, 5));
    EXPECT_EQ("hi", _text(block));
    EXPECT_EQ(0, in.read(block, 5));
    EXPECT_TRUE(block.isEmpty());
}

TEST_P(AnyMediaIn, BlockReadOfZeroReadsUpToTheCapacity)
{
    MediaIn in = open("abcdef");
    Buffer block(4, 0);
    EXPECT_EQ(4, in.read(block, 0));
    EXPECT_EQ("abcd", _text(block));
}

TEST_P(AnyMediaIn, BufferThatCannotGetFullTakesNoMoreThanWasAskedFor)
{
    MediaIn in = open("abcdefghijklmnopqrst");
    Buffer limited(6, 0);
    limited.maxSize(4);
    in.readline(limited);
    EXPECT_EQ("abcd", _text(limited));
    EXPECT_EQ(4, in.read(limited, 8));
    EXPECT_EQ("ghij", _text(limited));
    char bytes[2];
    Buffer foreign(bytes, sizeof bytes, false);
    EXPECT_EQ(2, in.read(foreign, 3));
    EXPECT_EQ("op", _text(foreign));
    std::string rest;
    EXPECT_EQ(3, in.read(rest));
    EXPECT_EQ("rst", rest);
}

TEST_P(AnyMediaIn, WithoutACountTheRestIsRead)
{
    std::string const bytes = "first\n" + std::string(200000, 'x') + "\nlast";
    MediaIn in = open(bytes);
    Buffer line(100, 0);
    in.readline(line);
    std::string all = "old";
    EXPECT_EQ(static_cast<int>(bytes.size() - 6), in.read(all));
    EXPECT_EQ(bytes.substr(6), all);
    Buffer rest = Buffer("old", 3, true);
    EXPECT_EQ(0, in.read(rest));
    EXPECT_TRUE(rest.isEmpty());
}

TEST_P(AnyMediaIn, WriteCopiesTheRest)
{
    std::string const bytes = "first\n" + std::string(200000, 'x') + "\nlast";
    MediaIn in = open(bytes);
    Buffer line(100, 0), target;
    in.readline(line);
    BufferMediaOut out(target);
    in.write(out);
    EXPECT_EQ(bytes.substr(6), _text(target));
    EXPECT_TRUE(in.atEnd());
}

TEST_P(AnyMediaIn, PeekConsumesNothingAndIsMinusOneAtTheEnd)
{
    MediaIn in = open("\xFF");
    EXPECT_EQ(255, in.peek());
    EXPECT_EQ(255, in.peek());
    EXPECT_FALSE(in.atEnd());
    uchar_t byte;
    in.read(&byte, 1);
    EXPECT_EQ(-1, in.peek());
    EXPECT_TRUE(in.atEnd());
}

TEST_P(AnyMediaIn, AnEmptyStreamIsAtItsEnd)
{
    MediaIn in = open("");
    EXPECT_TRUE(in.atEnd());
    EXPECT_TRUE(lines(in, 10).empty());
}

TEST_P(AnyMediaIn, CopiesShareThePosition)
{
    MediaIn in = open("a\nb\n");
    MediaIn copy = in;
    Buffer line(10, 0);
    in.readline(line);
    copy.readline(line);
    EXPECT_EQ("b\n", _text(line));
}

INSTANTIATE_TEST_SUITE_P(Kinds, AnyMediaIn, testing::Values(Memory, MemoryOfABuffer, CallersMemory, File, Defaults));

/// Positions are for memory and files alone.
class PositionedMediaIn : public AnyMediaIn {};

TEST_P(PositionedMediaIn, TellAndSetposAreExact)
{
    std::string bytes;
    for (int i = 0; bytes.size() < 300000; ++i) bytes += "line " + std::to_string(i) + "\n";
    MediaIn in = open(bytes);
    for (unsigned long position : {0ul, 65535ul, 65536ul, 65537ul, 200000ul, 3ul, 299000ul, 131072ul}) {
        in.setpos(position);
        EXPECT_EQ(position, in.tell());
        Buffer block;
        in.read(block, 10);
        EXPECT_EQ(bytes.substr(position, 10), _text(block)) << position;
        EXPECT_EQ(position + 10, in.tell());
    }
}

TEST_P(PositionedMediaIn, PastTheEndIsTheEnd)
{
    MediaIn in = open("abc");
    in.setpos(1000);
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(3u, in.tell());
    in.setpos(1);
    EXPECT_EQ('b', in.peek());
    in.setpos(1000); // now that the bytes are at hand
    EXPECT_TRUE(in.atEnd());
    EXPECT_EQ(3u, in.tell());
}

TEST_P(PositionedMediaIn, TheEndOfAWholeBlockIsAPosition)
{
    MediaIn in = open(std::string(65536, 'x'));
    in.setpos(65536);
    EXPECT_EQ(65536u, in.tell());
    EXPECT_TRUE(in.atEnd());
    in.setpos(65535);
    EXPECT_EQ('x', in.peek());
}

TEST_P(PositionedMediaIn, WithoutAPlaceToStoreNothingIsRead)
{
    MediaIn in = open("abc");
    EXPECT_EQ(0, in.read(static_cast<uchar_t*>(nullptr), 2));
    EXPECT_EQ(0u, in.tell());
}

INSTANTIATE_TEST_SUITE_P(Kinds, PositionedMediaIn, testing::Values(Memory, MemoryOfABuffer, CallersMemory, File));

TEST(MediaInImpl, DefaultsOfTellAndSetposDoNothing)
{
    MediaIn in(new Minimal("abc"), false);
    in.setpos(2);
    EXPECT_EQ(0u, in.tell());
    EXPECT_EQ('a', in.peek());
}

template <class Call> std::string _nullHandleError(Call call)
{
    try {
        call();
    } catch (Exception const& e) {
        return e.code() == 1 ? e.message() : "wrong code";
    }
    return "no exception";
}

TEST(MediaIn, EveryOperationOnANullHandleThrowsItsName)
{
    MediaIn in;
    Buffer buffer;
    std::string text;
    MediaOut out;
    EXPECT_TRUE(in.isNull());
    EXPECT_EQ("atEnd", _nullHandleError([&] { in.atEnd(); }));
    EXPECT_EQ("peek", _nullHandleError([&] { in.peek(); }));
    EXPECT_EQ("readline", _nullHandleError([&] { in.readline(buffer); }));
    EXPECT_EQ("read", _nullHandleError([&] { in.read(buffer, 1); }));
    EXPECT_EQ("read", _nullHandleError([&] { in.read(buffer); }));
    EXPECT_EQ("read", _nullHandleError([&] { in.read(text); }));
    EXPECT_EQ("tell", _nullHandleError([&] { in.tell(); }));
    EXPECT_EQ("setpos", _nullHandleError([&] { in.setpos(0); }));
    EXPECT_EQ("write", _nullHandleError([&] { in.write(out); }));
}

TEST(FileMediaIn, AMissingFileIsToldWithPathAndReason)
{
    try {
        FileMediaIn in("/nowhere/mail.eml");
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("FileMediaIn", e.message());
        EXPECT_EQ(6, e.code());
        EXPECT_EQ("/nowhere/mail.eml: No such file or directory", e.stringParameter());
    }
}

TEST(FileMediaIn, ADirectoryIsRefused)
{
    try {
        FileMediaIn in("/tmp");
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("/tmp: Is a directory", e.stringParameter());
    }
}

TEST(FileMediaIn, PositionsBeyondFourGigabytesAreExact)
{
    TemporaryFile const file("");
    unsigned long const far = (5ul << 30) + 12345;
    {
        std::ofstream out(file.path(), std::ios::binary);
        out.seekp(static_cast<std::streamoff>(far));
        out << "here\nthere\n";
    }
    FileMediaIn in(file.path());
    in.setpos(far);
    Buffer line(100, 0);
    in.readline(line);
    EXPECT_EQ("here\n", _text(line));
    EXPECT_EQ(far + 5, in.tell());
    in.setpos(far - 1);
    EXPECT_EQ(0, in.peek());
    in.setpos(0);
    EXPECT_EQ(0u, in.tell());
    in.setpos(far + 5);
    in.readline(line);
    EXPECT_EQ("there\n", _text(line));
    EXPECT_TRUE(in.atEnd());
}

TEST(FileMediaIn, AFailedReadIsTold)
{
    FileMediaIn in("/proc/self/mem"); // at its beginning nothing is mapped
    try {
        in.peek();
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("FileMediaIn", e.message());
        EXPECT_EQ(6, e.code());
        EXPECT_EQ("/proc/self/mem: Input/output error", e.stringParameter());
    }
}

TEST(FileMediaIn, APipeIsReadButNotPositioned)
{
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    std::string const path = "/proc/self/fd/" + std::to_string(ends[0]);
    FileMediaIn in(path);
    ASSERT_EQ(8, write(ends[1], "abc\ndef\n", 8));
    Buffer line(100, 0);
    in.readline(line);
    EXPECT_EQ("abc\n", _text(line));
    try {
        in.setpos(100000);
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ(6, e.code());
        EXPECT_EQ(path + ": Illegal seek", e.stringParameter());
    }
    EXPECT_EQ(4u, in.tell());
    in.readline(line);
    EXPECT_EQ("def\n", _text(line));
    ASSERT_EQ(4, write(ends[1], "ghi\n", 4));
    in.readline(line); // from a block of its own
    EXPECT_EQ("ghi\n", _text(line));
    EXPECT_EQ(12u, in.tell());
    for (int end : ends) close(end);
}

TEST(MediaOut, EveryOperationOnANullHandleThrowsItsName)
{
    MediaOut out;
    EXPECT_EQ("write", _nullHandleError([&] { out.write(Buffer()); }));
    EXPECT_EQ("write", _nullHandleError([&] { out.write(nullptr, 0); }));
    EXPECT_EQ("end", _nullHandleError([&] { out.end(); }));
    EXPECT_EQ("characterSet", _nullHandleError([&] { out.characterSet("utf-8"); }));
    EXPECT_EQ("tell", _nullHandleError([&] { out.tell(); }));
    EXPECT_EQ("setpos", _nullHandleError([&] { out.setpos(0); }));
    MediaOutDecorator decorator;
    EXPECT_EQ("attach", _nullHandleError([&] { decorator.attach(out); }));
    EXPECT_EQ("detach", _nullHandleError([&] { decorator.detach(); }));
}

TEST(BufferMediaOut, AppendsAndTruncates)
{
    Buffer target("a", 1, true);
    BufferMediaOut out(target);
    MediaOut copy(out);
    copy << std::string("bc") << 'd' << Buffer("ef", 2, true);
    EXPECT_EQ("abcdef", _text(target));
    EXPECT_EQ(6u, out.tell());
    out.setpos(3);
    out.setpos(100);
    EXPECT_EQ("abc", _text(target));
}

TEST(FileMediaOut, IsNullByDefault)
{
    EXPECT_TRUE(FileMediaOut().isNull());
}

TEST(FileMediaOut, WritesSmallAndLargePiecesInOrder)
{
    TemporaryFile const file("old content");
    std::string expected;
    {
        FileMediaOut out(file.path());
        for (size_t n : {1u, 100u, 70000u, 3u, 65536u, 65535u, 2u}) {
            std::string const piece(n, static_cast<char>('a' + n % 26));
            out << piece;
            expected += piece;
            EXPECT_EQ(expected.size(), out.tell());
        }
    }
    EXPECT_EQ(expected, file.content());
}

TEST(FileMediaOut, WhatWasWrittenIsInTheFile)
{
    TemporaryFile const file("");
    FileMediaOut out(file.path());
    out << std::string("abcdef");
    EXPECT_EQ("abcdef", file.content());
    out.setpos(2);
    out << std::string("XY");
    EXPECT_EQ("abXYef", file.content());
    out.end();
    EXPECT_EQ("abXYef", file.content());
}

TEST(FileMediaOut, AFileThatCannotBeMadeIsTold)
{
    try {
        FileMediaOut out("/nowhere/out");
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("FileMediaOut", e.message());
        EXPECT_EQ(6, e.code());
        EXPECT_EQ("/nowhere/out: No such file or directory", e.stringParameter());
    }
}

TEST(FileMediaOut, AFullDiskIsToldByTheWrite)
{
    FileMediaOut out("/dev/full");
    try {
        out << std::string("x");
        FAIL() << "no exception";
    } catch (Exception const& e) {
        EXPECT_EQ("FileMediaOut", e.message());
        EXPECT_EQ(6, e.code());
        EXPECT_EQ("/dev/full: No space left on device", e.stringParameter());
    }
    EXPECT_EQ(0u, out.tell());
    EXPECT_NO_THROW(out.end());
}

/// A decorator with nothing of its own.
class PassImpl : public MediaOutDecoratorImpl {
public:
    PassImpl() = default;
    explicit PassImpl(MediaOut const& downstream) : MediaOutDecoratorImpl(downstream) {}
    using MediaOutDecoratorImpl::write;
    void write(uchar_t const* bytes, uint_t n) override { downstream().write(bytes, n); }
};

class Pass : public MediaOutDecorator {
public:
    Pass() : MediaOut(new PassImpl, false) {}
    explicit Pass(MediaOut const& out) : MediaOut(new PassImpl(out), false) {}
};

class RecordingImpl : public MediaOutImpl {
public:
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override { seen.append(reinterpret_cast<char const*>(bytes), n); }
    void end() override { seen += "|end"; }
    void characterSet(std::string const& name) override { seen += "|" + name; }
    std::string seen;
};

TEST(MediaOutImpl, WithoutAPositionTellIsZeroAndSetposDoesNothing)
{
    auto* recording = new RecordingImpl;
    MediaOut sink(recording, false);
    sink << std::string("abc");
    sink.setpos(1);
    EXPECT_EQ(0u, sink.tell());
    EXPECT_EQ("abc", recording->seen);
}

TEST(MediaOutDecorator, IsMadeOfAnImplementation)
{
    auto* recording = new RecordingImpl;
    MediaOut const sink(recording, false);
    MediaOutDecorator decorator(new PassImpl, false);
    decorator.attach(sink);
    decorator << std::string("x");
    EXPECT_EQ("x", recording->seen);
}

/// Subclasses that leave the virtual base to MediaOutDecorator, and one that does not.
class Plain : public MediaOutDecorator {
public:
    explicit Plain(MediaOut const& out) : MediaOutDecorator(new PassImpl(out), false) {}
    explicit Plain(MediaOutDecorator const& other) : MediaOutDecorator(other) {}
};

class Twice : public MediaOutDecorator {
public:
    explicit Twice(PassImpl* pass) : MediaOut(pass, false), MediaOutDecorator(pass, false) {}
};

TEST(MediaOutDecorator, GivesASubclassItsImplementation)
{
    auto* recording = new RecordingImpl;
    Plain plain(MediaOut(recording, false));
    plain << std::string("a");
    Plain copy(static_cast<MediaOutDecorator const&>(plain));
    copy << std::string("b");
    EXPECT_EQ("ab", recording->seen);
}

TEST(MediaOutDecorator, TakesAnImplementationThatMediaOutHasOnce)
{
    auto* pass = new PassImpl;
    Twice const twice(pass);
    EXPECT_EQ(1, pass->count);
}

class Other : public Plain {
public:
    explicit Other(MediaOut const& out) : MediaOut(out), Plain(MediaOut()) {}
};

TEST(MediaOutDecorator, LeavesASubclassTheImplementationThatItChose)
{
    auto* recording = new RecordingImpl;
    MediaOut const sink(recording, false);
    Other const other(sink);
    EXPECT_EQ(recording, other.get());
}

TEST(MediaOutDecorator, WithoutAnImplementationCannotShareIt)
{
    EXPECT_TRUE(MediaOutDecorator(nullptr, false).isNull());
    EXPECT_THROW(MediaOutDecorator(nullptr, true), Exception);
}

TEST(MediaOutDecorator, PassesEndAndCharacterSetOn)
{
    auto* recording = new RecordingImpl;
    MediaOut sink(recording, false);
    Pass const inner(sink);
    Pass outer(static_cast<MediaOut const&>(inner));
    outer.characterSet("utf-8");
    outer << std::string("x");
    outer.end();
    EXPECT_EQ("|utf-8x|end", recording->seen);
}

TEST(MediaOutDecorator, WithoutADownstreamEndAndCharacterSetDoNothing)
{
    Pass pass;
    EXPECT_NO_THROW(pass.end());
    EXPECT_NO_THROW(pass.characterSet("utf-8"));
}

TEST(MediaOutDecorator, CopiesShareWhatIsAttached)
{
    auto* recording = new RecordingImpl;
    MediaOut sink(recording, false);
    Pass pass;
    MediaOutDecorator copy(pass);
    copy.attach(sink);
    pass << std::string("a");
    pass.detach();
    copy.end();
    EXPECT_EQ("a", recording->seen);
    MediaOutDecorator assigned;
    assigned = copy;
    assigned.attach(sink);
    pass << std::string("b");
    EXPECT_EQ("ab", recording->seen);
}

} // namespace
} // namespace Velmara
