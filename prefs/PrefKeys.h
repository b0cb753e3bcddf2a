#pragma once
// Every preference key once, with the type it is stored as and what its absence means. Readers
// and writers name keys through this table, so a misspelt key does not compile.

#include <QString>
#include <array>

enum class PrefType { String, Data, DataOrString, Boolean, Integer, Url };

struct PrefKey {
    const char *name;
    PrefType type;
    const char *whenAbsent;
    QString str() const { return QString::fromLatin1(name); }
};

namespace PrefKeys {
inline constexpr PrefKey Settings{"Settings", PrefType::DataOrString, "empty exporter settings"};
inline constexpr PrefKey DefaultFolder{"DefaultFolder", PrefType::Url, "the Desktop folder"};
inline constexpr PrefKey QuartzScaling{"QuartzScaling", PrefType::Boolean, "false"};
inline constexpr PrefKey DefaultMailer{"DefaultMailer", PrefType::Integer, "0"};
inline constexpr PrefKey LastScale{"LastScale", PrefType::String, "100"};
inline constexpr PrefKey LastFormat{"LastFormat", PrefType::String, "selection kept"};
inline constexpr PrefKey PageSetup{"PageSetup", PrefType::String, "empty setup"};

inline constexpr std::array<PrefKey, 7> all = {
    Settings, DefaultFolder, QuartzScaling, DefaultMailer, LastScale, LastFormat, PageSetup};
} // namespace PrefKeys
