// The hashers: what each kind of content is reduced to, how much of it must be there, and when to ask
// for more. A signature that exists on one installation has to exist on all, so the limits (64 bytes of
// text, 128 of an image, 1024 of anything else) and the flags that an early stop leaves as they were
// are part of it.
#include <velmara/Hasher.h>

#include <climits>

#include <velmara/Exception.h>
#include <velmara/HasherImpl.h>
#include <velmara/StringOperations.h>
#include <velmara/htm_txt_hash.h>
#include <velmara/image_walkers.h>

namespace Velmara {
namespace {

constexpr int _text_extract = 256; // bytes; a full extract cannot change any more
constexpr unsigned int _image_extract = 4096;
constexpr unsigned int _least_image_extract = 128;
constexpr unsigned int _least_binary = 1024;
constexpr unsigned int _binary_extract = 4096;

int _intLength(Buffer const& buffer)
{
    return static_cast<int>(min(buffer.length(), static_cast<unsigned int>(INT_MAX)));
}

void _replace(Buffer& data, unsigned char const* bytes, unsigned int n)
{
    data.length(0);
    data.append(bytes, n);
}

// What an image hasher of a type tries when its own walker has failed, and what it then becomes.
struct ImageTries {
    Hasher::DataType type;
    Hasher::DataType second, becomesBySecond;
    Hasher::DataType third, becomesByThird;
};

constexpr ImageTries _image_tries[] = {
    // GIF data leaves a JPEG hasher what it is: stored types of signatures are compared.
    {Hasher::DataJpeg, Hasher::DataGif, Hasher::DataJpeg, Hasher::DataPng, Hasher::DataPng},
    {Hasher::DataGif, Hasher::DataJpeg, Hasher::DataJpeg, Hasher::DataPng, Hasher::DataPng},
    {Hasher::DataPng, Hasher::DataGif, Hasher::DataGif, Hasher::DataJpeg, Hasher::DataJpeg},
};

// Other types are treated like JPEG, the first row.
ImageTries const& _triesOf(Hasher::DataType type)
{
    for (ImageTries const& tries : _image_tries)
        if (tries.type == type) return tries;
    return _image_tries[0];
}

int _walk(Hasher::DataType type, Buffer const& input, Buffer& data)
{
    auto const walker = type == Hasher::DataGif ? process_gif : type == Hasher::DataPng ? process_png : process_jpg;
    return walker(input.data(), _intLength(input), imageDataExtraction, &data);
}

HasherImpl* _newText(Hasher::DataType type)
{
    if (type == Hasher::DataHtml) return new TextHasherHtml;
    return new TextHasherPlain;
}

} // namespace

int imageDataExtraction(void const* bytes, int size, void* buffer)
{
    Buffer& data = *static_cast<Buffer*>(buffer);
    data.append(static_cast<unsigned char const*>(bytes), static_cast<unsigned int>(size));
    return data.length() < _image_extract ? size : 0;
}

int imageDataExtraction(unsigned char const* bytes, int size, void* buffer)
{
    return imageDataExtraction(static_cast<void const*>(bytes), size, buffer);
}

HasherImpl::HasherImpl() = default;
HasherImpl::~HasherImpl() = default;

void HasherImpl::finish()
{
    if (!data.isEmpty()) md5.update(data.data(), min(data.length(), maxlen()));
    md5.finalize();
    valid = true;
}

unsigned int TextHasherImpl::maxlen() const
{
    return _text_extract;
}

void TextHasherImpl::process(Buffer const& input)
{
    processedDataLength = input.length();
    char extract[_text_extract];
    long written = 0;
    int const length = htm_txt_get_data(reinterpret_cast<char const*>(input.data()), _intLength(input), m_mode, extract,
                                        _text_extract, &written);
    moreDataRequired = written < _text_extract && sourceIsLonger();
    if (length < 1) return;
    _replace(data, reinterpret_cast<unsigned char const*>(extract), static_cast<unsigned int>(length));
    if (hashedDataLength == 0) hashedDataLength = data.length();
    finish();
}

TextHasherHtml::TextHasherHtml() : TextHasherImpl(1)
{}
TextHasherHtml::~TextHasherHtml() = default;

TextHasherPlain::TextHasherPlain() : TextHasherImpl(2)
{}
TextHasherPlain::~TextHasherPlain() = default;

ImageHasherImpl::ImageHasherImpl() = default;
ImageHasherImpl::~ImageHasherImpl() = default;

unsigned int ImageHasherImpl::maxlen() const
{
    return _image_extract;
}

bool ImageHasherImpl::gather(Hasher::DataType type, Buffer const& input)
{
    data.length(0);
    return _walk(type, input, data) == 0;
}

bool ImageHasherImpl::gatherAny(Buffer const& input)
{
    if (gather(dataType, input)) return true;
    ImageTries const& tries = _triesOf(dataType);
    if (gather(tries.second, input)) {
        dataType = tries.becomesBySecond;
        return true;
    }
    if (!gather(tries.third, input)) return false;
    dataType = tries.becomesByThird;
    return true;
}

void ImageHasherImpl::process(Buffer const& input)
{
    processedDataLength = input.length();
    if (!gatherAny(input) && input.length() >= _least_binary) {
        dataType = Hasher::DataBinary;
        _replace(data, input.data(), input.length());
    }
    moreDataRequired = sourceIsLonger() && (dataType == Hasher::DataBinary || data.length() < _least_image_extract);
    hashedDataLength = data.length();
    if (hashedDataLength < _least_image_extract) return;
    finish();
}

BinaryHasherImpl::BinaryHasherImpl(unsigned int maxlen) : m_maxlen(maxlen ? maxlen : _binary_extract)
{}
BinaryHasherImpl::~BinaryHasherImpl() = default;

unsigned int BinaryHasherImpl::maxlen() const
{
    return m_maxlen;
}

// Once set, the flag stays even if there is a digest: callers give all there is, up to their own limit.
void BinaryHasherImpl::process(Buffer const& input)
{
    processedDataLength = hashedDataLength = input.length();
    if (input.length() < _least_binary) {
        if (sourceIsLonger()) moreDataRequired = true;
        return;
    }
    _replace(data, input.data(), input.length());
    finish();
}

Hasher::Hasher() : m_holder(nullptr)
{}

Hasher::Hasher(HasherImpl* impl, bool addRef) : m_holder(newRefCounted(impl, addRef))
{}

Hasher::Hasher(Hasher const& other)
    : m_holder(other.m_holder ? new RefCounted<HasherImpl>(other.m_holder->ptr, true) : nullptr)
{}

Hasher& Hasher::operator=(Hasher const& other)
{
    RefCountedImplCopy(m_holder, other.m_holder);
    return *this;
}

Hasher::~Hasher()
{
    delete m_holder;
}

bool Hasher::isNull() const
{
    return !m_holder || !m_holder->ptr;
}

Hasher::DataType Hasher::dataType() const
{
    return isNull() ? DataNone : m_holder->ptr->dataType;
}

void Hasher::dataType(DataType type)
{
    if (isNull()) throw Exception("Hasher::process", 1, "Hasher", __LINE__);
    m_holder->ptr->dataType = type;
}

unsigned int Hasher::dataSourceLength() const
{
    return isNull() ? 0 : m_holder->ptr->dataSourceLength;
}

void Hasher::dataSourceLength(unsigned int length)
{
    if (isNull()) throw Exception("Hasher::process", 1, "Hasher", __LINE__);
    m_holder->ptr->dataSourceLength = length;
}

bool Hasher::isValid() const
{
    return !isNull() && m_holder->ptr->valid;
}

bool Hasher::isMoreDataRequired() const
{
    return !isNull() && m_holder->ptr->moreDataRequired;
}

unsigned int Hasher::processedDataLength() const
{
    return isNull() ? 0 : m_holder->ptr->processedDataLength;
}

unsigned int Hasher::hashedDataLength() const
{
    return isNull() ? 0 : m_holder->ptr->hashedDataLength;
}

void Hasher::process(Buffer const& data, unsigned int sourceLength)
{
    if (isNull()) throw Exception("Hasher::process", 1, "Hasher", __LINE__);
    if (sourceLength != 0) m_holder->ptr->dataSourceLength = sourceLength;
    m_holder->ptr->process(data);
}

void Hasher::process(std::string const& data)
{
    if (isNull()) throw Exception("Hasher::process", 1, "Hasher", __LINE__);
    m_holder->ptr->process(Buffer(data.data(), static_cast<unsigned int>(min(data.size(), UINT_MAX)), false));
}

std::string Hasher::digest() const
{
    if (isNull()) throw Exception("Hasher", 1, "Hasher", __LINE__);
    return m_holder->ptr->md5.digest();
}

std::string Hasher::digestAsHexString() const
{
    if (isNull()) throw Exception("Hasher", 1, "Hasher", __LINE__);
    return m_holder->ptr->md5.digestAsHexString();
}

TextHasher::TextHasher(DataType type) : Hasher(_newText(type), false)
{
    dataType(type);
}

TextHasher::TextHasher(DataType type, Buffer const& data) : TextHasher(type)
{
    process(data, 0);
}

ImageHasher::ImageHasher(DataType type) : Hasher(new ImageHasherImpl, false)
{
    dataType(type);
}

ImageHasher::ImageHasher(DataType type, Buffer const& data) : ImageHasher(type)
{
    process(data, 0);
}

BinaryHasher::BinaryHasher() : BinaryHasher(0u)
{}

BinaryHasher::BinaryHasher(Buffer const& data) : BinaryHasher(0u)
{
    process(data, 0);
}

BinaryHasher::BinaryHasher(unsigned int maxlen) : Hasher(new BinaryHasherImpl(maxlen), false)
{
    dataType(DataBinary);
}

} // namespace Velmara
