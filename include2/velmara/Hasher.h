#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

class HasherImpl;

/// Makes the 128-bit signature of a part's decoded body.
///
/// The signature of text and images is never taken over the raw bytes: each kind of content is first
/// reduced to a bounded extract (htm_txt_get_data, process_jpg and its like), and the MD5 of that
/// extract is the signature. Two installations agree on it although links, case, headers of images and
/// the end of the body differ.
///
/// A caller makes a hasher by HasherFactory and gives it the first bytes of the body together with the
/// length of the whole; while `isMoreDataRequired()` and there is more, it gives a longer prefix, each
/// time from the first byte on; then, if `isValid()`, it takes the digest. Too little data is no error: there is no
/// signature then.
///
/// Copies share one hasher, which belongs to one thread at a time. On a null handle the readers give 0
/// or false, and what needs a hasher throws Exception (code 1).
class VELMARA_EXPORT Hasher {
public:
    /// Other programs store these numbers: add at the end, never renumber.
    enum DataType : int {
        DataNone = 0, // of a null handle
        DataHtml = 1,
        DataText = 2,
        DataPng = 3,
        DataGif = 4,
        DataJpeg = 5,
        DataBinary = 6 // anything else
    };

    /// A null handle.
    Hasher();
    /// A new object is wrapped with `addRef` false.
    Hasher(HasherImpl* impl, bool addRef);
    /// Throws Exception (code 4) for a handle that holds null; the assignment accepts one.
    Hasher(Hasher const& other);
    Hasher& operator=(Hasher const& other);
    ~Hasher();

    /// True without an implementation.
    bool isNull() const;

    /// The kind of content that is looked for; an image may turn out to be of another kind.
    DataType dataType() const;
    void dataType(DataType type);
    /// The size of the whole body, 0 where it is not known. Without it no more data is asked for.
    unsigned int dataSourceLength() const;
    void dataSourceLength(unsigned int length);

    /// There is a digest. It stays so: a later `process` that yields none leaves the one before.
    bool isValid() const;
    /// `process` should be called again with a longer prefix of the body. A binary hasher that has asked
    /// once goes on asking, digest or not.
    bool isMoreDataRequired() const;
    /// Length of the last input.
    unsigned int processedDataLength() const;
    /// Length of the extract, of which only the first bytes may have been hashed: 256 of text, 4096 of
    /// images and, if not set otherwise, of anything else. For text the first one that was not 0 stays.
    unsigned int hashedDataLength() const;

    /// Reduces and hashes a prefix of the body, from its first byte on. A `sourceLength` other than 0 is
    /// stored as the size of the whole body.
    void process(Buffer const& data, unsigned int sourceLength);
    void process(std::string const& data);

    /// The 16 bytes; empty unless valid.
    std::string digest() const;
    /// 32 lower-case digits; empty unless valid.
    std::string digestAsHexString() const;

private:
    RefCounted<HasherImpl>* m_holder; // owned
};

/// Of text. DataHtml reads HTML, every other type plain text; the type given is the one reported.
class VELMARA_EXPORT TextHasher : public Hasher {
public:
    /// Nothing processed yet.
    explicit TextHasher(DataType type);
    /// Processes the data, the size of the whole being unknown.
    TextHasher(DataType type, Buffer const& data);
};

/// Of an image whose kind is only a first guess: the other two are tried when it fails, and data of 1024
/// bytes or more that is no image at all is hashed as DataBinary. A type other than the three is
/// treated like DataJpeg.
class VELMARA_EXPORT ImageHasher : public Hasher {
public:
    /// Nothing processed yet.
    explicit ImageHasher(DataType type);
    /// Processes the data, the size of the whole being unknown.
    ImageHasher(DataType type, Buffer const& data);
};

/// Of anything else: the first bytes as they are. Below 1024 bytes there is no signature.
class VELMARA_EXPORT BinaryHasher : public Hasher {
public:
    BinaryHasher();
    /// Processes the data, the size of the whole being unknown.
    explicit BinaryHasher(Buffer const& data);
    /// Hashes at most that many bytes; 0 means 4096.
    explicit BinaryHasher(unsigned int maxlen);
};

} // namespace Velmara
