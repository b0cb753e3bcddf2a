#pragma once
// The module over the preference store: the domain name, the store object, and the two string
// functions. Values of other types are read and written by their handlers on MyPref directly.
// Beside the store it holds the three settings whose home is the preferences window, as that
// window's controls last set them: the editor and the outputs read them here.

#include "platform/store/CFPreferences.h"
#include "prefs/PrefKeys.h"

#include <QObject>
#include <functional>
#include <memory>

class Preferences : public QObject {
    Q_OBJECT
public:
    explicit Preferences(fw::PreferenceDomains &domains);
    ~Preferences();

    // The one module instance of the running program.
    static Preferences &module();

    QString appname;                           // the domain; empty until initprefs
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

    // Smooth ("Quartz") scaling, the mail program's row, the image format's label and exporter
    // code. They reach the store only where they always did: scaling and mailer when the
    // preferences window closes, the format's label after an output.
    bool quartz() const { return m_quartz; }
    void setQuartz(bool on);
    int mailer() const { return m_mailer; }
    void setMailer(int row) { m_mailer = row; }
    QString formatLabel() const { return m_formatLabel; }
    QString formatCode() const { return m_formatCode; }
    void setFormat(const QString &label, const QString &code);

signals:
    void quartzChanged(bool on);
    void formatChanged(const QString &code);

private:
    void addString(const PrefKey &key, const fw::StoreObject &value);
    fw::PreferenceDomains &m_domains;
    bool m_quartz = false;
    int m_mailer = 0;
    QString m_formatLabel, m_formatCode;
};
