#pragma once
// The module over the preference store: the domain name, the store object, and the two string
// functions. Values of other types are read and written by their handlers on MyPref directly.

#include "platform/store/CFPreferences.h"
#include "prefs/PrefKeys.h"

#include <functional>
#include <memory>

class Preferences {
public:
    explicit Preferences(fw::PreferenceDomains &domains);
    ~Preferences();

    // The one module instance of the running program.
    static Preferences &module();

    QString appname;                        // the domain; empty until initprefs
    std::unique_ptr<fw::CFPreferences> MyPref; // nil until created

    void initprefs();
    void prefaddstringvalue(const PrefKey &key, const QString &value);
    // Bytes that are no valid text make no string: nothing is written.
    void prefaddstringvalue(const PrefKey &key, const QByteArray &value);
    QString prefgetstringvalue(const PrefKey &key);

    // A new store object (what Window1's open handler makes when none exists yet).
    std::unique_ptr<fw::CFPreferences> newStore() const;

    // The alert of a store that could not be opened; App sets it to its MsgBox.
    std::function<void(const QString &)> msgBox;

private:
    void addString(const PrefKey &key, const fw::StoreObject &value);
    fw::PreferenceDomains &m_domains;
};
