#pragma once

#include <exception>
#include <memory>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// The one base of everything that the library throws, thrown by value and caught by reference.
///
/// The message names the operation that failed (or, for the classes below, the class); the code says
/// in what way:
///   1  operation on something that is not there (a null handle)
///   2  a value of the wrong kind
///   4  the caller broke a rule, or the object has no such operation
///   5  input that cannot be parsed
///   6  a resource of the environment could not be set up
///
/// Copies share their text until one of them is changed, so throwing and rethrowing cost no copy of
/// strings. One exception object belongs to one thread at a time.
class VELMARA_EXPORT Exception : public std::exception {
public:
    /// `file` may be null and `line` 0 where the origin does not matter.
    Exception(std::string const& message, int code, char const* file, unsigned int line);
    Exception(Exception const&) noexcept = default;
    Exception& operator=(Exception const&) noexcept = default;
    ~Exception() override;

    /// The message.
    char const* what() const noexcept override;
    std::string const& message() const;
    int code() const;

    /// Further words, such as a path or the text of a system error; empty until set.
    std::string const& stringParameter() const;
    void stringParameter(std::string const& text);
    /// A further number; 0 until set.
    int intParameter() const;
    void intParameter(int number);

    /// The source unit of the throw, "" where none was given. A null pointer sets "".
    std::string const& fileName() const;
    void fileName(char const* name);
    void fileName(std::string const& name);
    /// The line of the throw, 0 where none was given.
    unsigned int lineNumber() const;
    void lineNumber(unsigned int line);

    /// Whether this one translates another.
    bool hasCause() const;
    /// The exception that this one translates; without one, an exception with an empty message and
    /// code 0. The reference holds as long as this object keeps its cause.
    Exception const& cause() const;
    void cause(Exception const& origin);

    /// One line for logs: message, code, parameters and origin, then each cause behind ", caused by ".
    std::string asString() const;

private:
    struct State;
    State& changeable();

    std::shared_ptr<State> m_state; // shared by copies, cloned before a change
};

/// An operation on a header handle, header list or the like that has no implementation (code 1).
class VELMARA_EXPORT HeaderException : public Exception {
public:
    /// The line of the throw and, where given, the unit that it reports; "HeaderImpl" else.
    explicit HeaderException(unsigned int line);
    HeaderException(unsigned int line, char const* file);
};

/// An operation on a codec or converter handle that has no implementation (code 1), or a write that
/// a codec could not finish (code 4).
class VELMARA_EXPORT MediaException : public Exception {
public:
    /// The line of the throw and, where given, the unit that it reports, "Base64Codec" else, and the code.
    explicit MediaException(unsigned int line);
    MediaException(unsigned int line, char const* file);
    MediaException(unsigned int line, char const* file, int code);
};

/// An operation on a null encoded word (code 1), or text that is no encoded word (codes 2 and 5).
class VELMARA_EXPORT EncodedWordException : public Exception {
public:
    /// The line of the throw, in the unit "EncodedWordImpl".
    EncodedWordException(int code, unsigned int line);
};

/// Content that a Buffer cannot decode (code 5).
class VELMARA_EXPORT BufferException : public Exception {
public:
    /// The operation that failed is the message.
    BufferException(std::string const& message, int code, unsigned int line);
};

} // namespace Velmara
