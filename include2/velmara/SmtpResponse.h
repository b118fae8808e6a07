#pragma once

#include <string>

#include <velmara/Regex.h>
#include <velmara/Singleton.h>

namespace Velmara::SMTP {

/// The expression that finds the enhanced code of a reply line: group 1 is the reply code, 2 the
/// enhanced code, 3 the text. One for the process; any number of threads may use it.
class VELMARA_EXPORT _ResponseParser : public Regex::Expression, public Singleton<_ResponseParser> {
public:
    _ResponseParser();
};

/// An enhanced status code (RFC 3463), such as 5.7.1.
class VELMARA_EXPORT EnhancedStatusCode {
public:
    EnhancedStatusCode();
    virtual ~EnhancedStatusCode();

    /// Reads three numbers with full stops between them. Of several digits in the first two places the
    /// last one counts; the class is 0 unless it is 2, 4 or 5. An empty text does nothing, and fields
    /// that the text does not reach keep their values. The digits are not checked.
    void value(std::string const& text);

    /// Whether a code was read; until then all numbers are 0.
    bool isPresent() const { return m_present; }
    int classValue() const { return m_class; }
    int category() const { return m_category; }
    int detail() const { return m_detail; }

private:
    bool m_present = false; // a digit of the detail was read
    int m_class = 0;
    int m_category = 0;
    int m_detail = 0;
};

/// One SMTP reply line (RFC 5321), classified: "550 5.7.1 Not today" is of class 5, category 5, detail
/// 0, with the enhanced code 5.7.1. The text is not kept, and the lines of a longer reply are not
/// joined. Nothing is thrown: a line without three digits at its start leaves all fields as they are
/// at first.
class VELMARA_EXPORT Response {
public:
    /// The line may still carry its line end.
    Response(std::string const& line);
    virtual ~Response();

    /// True if the class is known.
    bool isValid() const { return m_class != 0; }
    /// 2 to 5; 0 at first and for any other first digit.
    int classValue() const { return m_class; }
    /// 0, 1, 2 or 5; -1 at first and for any other second digit.
    int category() const { return m_category; }
    /// The third digit; 0 at first.
    int detail() const { return m_detail; }
    /// Not present where the line has none.
    EnhancedStatusCode const& enhancedStatusCode() const { return m_enhanced; }

private:
    EnhancedStatusCode m_enhanced;
    int m_class = 0;
    int m_category = -1;
    int m_detail = 0;
};

} // namespace Velmara::SMTP
