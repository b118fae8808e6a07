#pragma once

#include <map>
#include <string>
#include <vector>

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// Number of a classifier, 0 to 74: a row of the table behind ClassifierNames. Stored in logs and
/// databases, so numbers are never given anew.
typedef unsigned int ClassifierType;

/// The names and categories of the classifiers that can decide about a message. Logs, reports and
/// configuration rely on these exact texts. One object, made at load and then only read, safe from
/// any thread.
class VELMARA_EXPORT ClassifierNames : private NonCopyable {
public:
    /// Two categories are shown as "Clean"; only the first is no reason to call a message spam. Numbers
    /// that are none of these, as other versions may have stored them, can be asked about as well.
    enum Category : int {
        CategoryClean = 0,
        CategorySession = 1,
        CategoryBulk = 2,
        CategoryVirus = 3,
        CategoryContent = 4
    };

    /// Classifiers have the numbers below this.
    static constexpr ClassifierType count = 75;

    /// The object of the process.
    static ClassifierNames& instance();

    /// The name; "None" for a number above 74.
    std::string const& mapToString(ClassifierType type) const;
    /// The category; CategoryClean for a number above 74.
    Category category(ClassifierType type) const;
    /// "Clean", "Bulk", "Virus" or "Content"; "Clean" for a number that is no category.
    std::string const& categoryName(Category category) const;
    /// That of the classifier's category.
    std::string const& categoryName(ClassifierType type) const;
    /// True for every category but the first, CategorySession included.
    bool isSpamClassifier(ClassifierType type) const;
    /// The number of the classifier with exactly that name; 0, "Not Spam", if there is none.
    ClassifierType findTypeByString(char const* name) const;
    /// Whether a name equals `text` without regard to case, or with `substring` contains it.
    bool checkTypeByString(char const* text, bool substring) const;

private:
    ClassifierNames();

    std::vector<std::string> m_names; // by number
    std::map<Category, std::string> m_categoryNames;
};

} // namespace Velmara
