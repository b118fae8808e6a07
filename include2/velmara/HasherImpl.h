#pragma once

#include <velmara/Buffer.h>
#include <velmara/Hasher.h>
#include <velmara/Md5Hasher.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// What a Hasher points at: one for each kind of reduction.
class VELMARA_EXPORT HasherImpl : virtual public RefImpl {
public:
    HasherImpl();
    ~HasherImpl() override;

    /// The most bytes of the extract that enter the digest.
    virtual unsigned int maxlen() const = 0;
    /// Starts over with a prefix of the body.
    virtual void process(Buffer const& input) = 0;

    Hasher::DataType dataType = Hasher::DataNone; // set by the handle; an image hasher may change it
    unsigned int dataSourceLength = 0;            // of the whole body; 0 where it is not known
    Buffer data{4096, 0};                         // the extract that is hashed
    /// Over the extract.
    Md5Hasher md5;
    /// As Hasher::isMoreDataRequired tells it.
    bool moreDataRequired = false;
    unsigned int processedDataLength = 0; // of the last input
    unsigned int hashedDataLength = 0;    // of the extract
    bool valid = false;                   // there is a digest

protected:
    /// The body is known to go on behind what was processed.
    bool sourceIsLonger() const { return dataSourceLength != 0 && dataSourceLength > processedDataLength; }
    /// Takes the digest of the extract's first bytes.
    void finish();
};

/// What both readings of text share; they differ in the normaliser's mode.
class VELMARA_EXPORT TextHasherImpl : public HasherImpl {
public:
    unsigned int maxlen() const override;
    void process(Buffer const& input) override;

protected:
    /// The mode of htm_txt_get_data.
    explicit TextHasherImpl(int mode) : m_mode(mode) {}

private:
    int const m_mode;
};

/// HTML: mode 1 of htm_txt_get_data.
class VELMARA_EXPORT TextHasherHtml : public TextHasherImpl {
public:
    TextHasherHtml();
    ~TextHasherHtml() override;
};

/// Plain text: mode 2.
class VELMARA_EXPORT TextHasherPlain : public TextHasherImpl {
public:
    TextHasherPlain();
    ~TextHasherPlain() override;
};

/// Pixel data without headers; see ImageHasher for what is tried.
class VELMARA_EXPORT ImageHasherImpl : public HasherImpl {
public:
    ImageHasherImpl();
    ~ImageHasherImpl() override;

    unsigned int maxlen() const override;
    void process(Buffer const& input) override;

private:
    bool gather(Hasher::DataType type, Buffer const& input);
    bool gatherAny(Buffer const& input);
};

/// The first bytes as they are.
class VELMARA_EXPORT BinaryHasherImpl : public HasherImpl {
public:
    /// 0 means 4096.
    explicit BinaryHasherImpl(unsigned int maxlen = 0);
    ~BinaryHasherImpl() override;

    unsigned int maxlen() const override;
    void process(Buffer const& input) override;

private:
    unsigned int m_maxlen;
};

/// Gathers pieces of image data: appends the bytes to the Buffer `buffer` and gives `size` while that
/// holds fewer than 4096 bytes, 0 from then on. So a piece of 0 bytes ends a walk, and the last piece
/// may take the buffer past 4096.
VELMARA_EXPORT int imageDataExtraction(void const* bytes, int size, void* buffer);
/// The same in the form that the walkers call.
VELMARA_EXPORT int imageDataExtraction(unsigned char const* bytes, int size, void* buffer);

} // namespace Velmara
