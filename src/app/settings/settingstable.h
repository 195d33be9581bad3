#pragma once

#include <QVariant>

#include <variant>
#include <vector>

struct Settings;

/// One setting of the file: where it stands, the value it fills and what it is when the file does
/// not say.
struct SettingRow {
    using Target = std::variant<bool*, int*, float*, QByteArray*, QStringList*>;

    const char* group;
    const char* key;
    Target target;
    QVariant defaultValue;
    bool saved = true; // false: read only, because another row writes the key
};

/// All settings in the order in which they are read, pointing into `values`, which must outlive the
/// rows.
std::vector<SettingRow> settingRows(Settings& values);

/// Stores `stored` in the row's value, or the default where it is missing or is no value of that
/// type: a number that does not fit into the type, or is not finite, counts as none.
void assignSetting(const SettingRow& row, const QVariant& stored);

/// The row's value as it is to stand in the file, in words that a person can read.
QVariant settingForFile(const SettingRow& row);
