// Registry settings beside Qt's QSettings in INI format, on the same data in
// the same run. Two layouts of 10^4 settings: all under one key, and one per
// key below 10^4 keys. Our store is measured through the raw calls on open
// key handles and through CKWRegistry, which opens the key by its path on
// every access:
//   - gets of string and DWORD values;
//   - batched sets: 10^4 sets, then one flush (RegFlushKey, sync()) per batch;
//     ours inside a CKWRegistryBatch;
//   - single durable sets: each set followed by a flush, under the one key
//     holding 10^4 values;
//   - enumeration of the 10^4 sub-keys (RegEnumKeyExA, childGroups());
//   - export of each layout to a "REGEDIT4" file (ours alone: QSettings has
//     no such export).
// Each data set lives in a store and an INI file of its own in a temporary
// folder, made once per run and shared by the benchmarks that use it. Rates
// are of wall-clock time: sets wait for the disk.
#include <benchmark/benchmark.h>

#include <QSettings>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CTempFolder.h"
#include "kwcore/platform/CKWRegistryBatch.h"
#include "kwcore/platform/Registry.h"
#include "kwcore/system/CKWRegistry.h"

namespace {

constexpr int kSettings = 10000;
// Below HKEY_CURRENT_USER; CKWRegistry's paths are relative to "Software".
constexpr const char* kRoot = "Software\\Bench";
constexpr const char* kRootBelowSoftware = "Bench\\";

enum EKWLayout { kOneKey, kSpread };
enum EKWValueType { kString, kDword };

struct SKWSetting {
    std::string key;   // below kRoot
    std::string name;  // of the value
};

std::string Numbered(const char* prefix, int index) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%05d", prefix, index);
    return text;
}

std::vector<SKWSetting> Settings(EKWLayout layout) {
    std::vector<SKWSetting> settings;
    for (int i = 0; i < kSettings; ++i) {
        if (layout == kOneKey) {
            settings.push_back({"One", Numbered("Value", i)});
        } else {
            settings.push_back({"Spread\\" + Numbered("Key", i), "Value"});
        }
    }
    return settings;
}

// A typical setting: a path or a small number, changed by round.
std::string StringData(int index, int round) {
    return "C:\\Program Files\\Quellspar\\CoreLib\\Setting " + std::to_string(index) + "." +
           std::to_string(round);
}
DWORD DwordData(int index, int round) {
    return static_cast<DWORD>(index * 7 + round);
}

// One data set in both stores: our registry store ($KWCORE_REGISTRY names it
// while it is filled; the handles stay with it) and an INI file.
class CKWSettingsData {
public:
    CKWSettingsData(EKWLayout layout, EKWValueType type)
        : m_folder("kwregistry-bench-"), m_settings(Settings(layout)), m_type(type) {
        Select();
        RegCreateKeyExA(HKEY_CURRENT_USER, kRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &m_rootKey, nullptr);
        m_registry = std::make_unique<CKWRegistry>("Bench", "Application", HKEY_CURRENT_USER);
        std::map<std::string, HKEY> opened;
        for (const SKWSetting& setting : m_settings) {
            HKEY& key = opened[setting.key];
            if (key == nullptr) {
                RegCreateKeyExA(m_rootKey, setting.key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                nullptr, &key, nullptr);
            }
            m_keys.push_back(key);
            m_paths.push_back(CString((kRootBelowSoftware + setting.key).c_str()));
            m_names.push_back(CString(setting.name.c_str()));
            std::string qtKey = setting.key + "/" + setting.name;
            for (char& c : qtKey) {
                c = c == '\\' ? '/' : c;
            }
            m_qtKeys.push_back(QString::fromStdString(qtKey));
        }
        m_qt = std::make_unique<QSettings>(
            QString::fromStdString((m_folder.GetPath() / "settings.ini").string()),
            QSettings::IniFormat);
        SetAllRaw(0);
        FlushRaw();
        SetAllQt(0);
        m_qt->sync();
    }
    ~CKWSettingsData() {
        std::map<HKEY, bool> closed;
        for (HKEY key : m_keys) {
            if (!closed[key]) {
                RegCloseKey(key);
                closed[key] = true;
            }
        }
        RegCloseKey(m_rootKey);
    }
    CKWSettingsData(const CKWSettingsData&) = delete;
    CKWSettingsData& operator=(const CKWSettingsData&) = delete;

    // Makes $KWCORE_REGISTRY name this data set's store, for calls by path.
    void Select() const { setenv("KWCORE_REGISTRY", StorePath().c_str(), 1); }
    int Count() const { return static_cast<int>(m_settings.size()); }
    EKWValueType Type() const { return m_type; }
    HKEY RootKey() const { return m_rootKey; }
    const std::filesystem::path& Folder() const { return m_folder.GetPath(); }
    QSettings& Qt() { return *m_qt; }

    LSTATUS SetRaw(int i, int round) {
        if (m_type == kDword) {
            const DWORD value = DwordData(i, round);
            return RegSetValueExA(m_keys[i], m_names[i], 0, REG_DWORD,
                                  reinterpret_cast<const BYTE*>(&value), sizeof value);
        }
        const std::string value = StringData(i, round);
        return RegSetValueExA(m_keys[i], m_names[i], 0, REG_SZ,
                              reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>(value.size() + 1));
    }
    LSTATUS GetRaw(int i) {
        BYTE data[256];
        DWORD size = sizeof data;
        DWORD type = REG_NONE;
        return RegQueryValueExA(m_keys[i], m_names[i], nullptr, &type, data, &size);
    }
    LSTATUS FlushRaw() { return RegFlushKey(m_rootKey); }

    _EKWRegistryErrors SetTyped(int i, int round) {
        if (m_type == kDword) {
            return m_registry->PutRegValue(m_paths[i], m_names[i], DwordData(i, round));
        }
        return m_registry->PutRegValue(m_paths[i], m_names[i],
                                       CString(StringData(i, round).c_str()));
    }
    _EKWRegistryErrors GetTyped(int i) {
        if (m_type == kDword) {
            unsigned long value = 0;
            return m_registry->GetRegValue(m_paths[i], m_names[i], value, 0ul);
        }
        CString value;
        return m_registry->GetRegValue(m_paths[i], m_names[i], value, CString());
    }

    void SetQt(int i, int round) {
        if (m_type == kDword) {
            m_qt->setValue(m_qtKeys[i], static_cast<uint>(DwordData(i, round)));
        } else {
            m_qt->setValue(m_qtKeys[i], QString::fromStdString(StringData(i, round)));
        }
    }
    bool GetQt(int i) {
        const QVariant value = m_qt->value(m_qtKeys[i]);
        if (m_type == kDword) {
            bool isNumber = false;
            value.toUInt(&isNumber);
            return isNumber;
        }
        return !value.toString().isEmpty();
    }

private:
    std::string StorePath() const { return (m_folder.GetPath() / "registry.db").string(); }
    void SetAllRaw(int round) {
        CKWRegistryBatch batch(m_rootKey);
        for (int i = 0; i < Count(); ++i) {
            SetRaw(i, round);
        }
    }
    void SetAllQt(int round) {
        for (int i = 0; i < Count(); ++i) {
            SetQt(i, round);
        }
    }

    CTempFolder m_folder;
    std::vector<SKWSetting> m_settings;
    EKWValueType m_type;
    std::unique_ptr<CKWRegistry> m_registry;
    HKEY m_rootKey = nullptr;
    std::vector<HKEY> m_keys;
    std::vector<CString> m_paths;
    std::vector<CString> m_names;
    std::vector<QString> m_qtKeys;
    std::unique_ptr<QSettings> m_qt;
};

// The data set of a layout and type, made on first use.
CKWSettingsData& Data(EKWLayout layout, EKWValueType type) {
    static std::map<std::pair<int, int>, std::unique_ptr<CKWSettingsData>> sets;
    std::unique_ptr<CKWSettingsData>& data = sets[{layout, type}];
    if (data == nullptr) {
        data = std::make_unique<CKWSettingsData>(layout, type);
    }
    return *data;
}

// ------------------------------------------------------------------ gets

// One get per iteration, walking through the settings.
template <class Get>
void RunGets(benchmark::State& state, CKWSettingsData& data, Get get) {
    int i = 0;
    for (auto _ : state) {
        if (!get(i)) {
            state.SkipWithError("a get failed");
            break;
        }
        i = i + 1 == data.Count() ? 0 : i + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_GetRaw(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunGets(state, data, [&](int i) { return data.GetRaw(i) == ERROR_SUCCESS; });
}

void BM_GetCKWRegistry(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunGets(state, data, [&](int i) { return data.GetTyped(i) == KW_REGISTRY_SUCCESS; });
}

void BM_GetQSettings(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunGets(state, data, [&](int i) { return data.GetQt(i); });
}

// ------------------------------------------------------------------ sets

// One batch of every setting per iteration, with new data each round.
template <class Batch>
void RunBatches(benchmark::State& state, CKWSettingsData& data, Batch batch) {
    int round = 1;
    for (auto _ : state) {
        if (!batch(round++)) {
            state.SkipWithError("a set failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * data.Count());
}

void BM_BatchedSetsRaw(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunBatches(state, data, [&](int round) {
        bool ok = true;
        {
            CKWRegistryBatch batch(data.RootKey());
            for (int i = 0; i < data.Count(); ++i) {
                ok = data.SetRaw(i, round) == ERROR_SUCCESS && ok;
            }
        }
        return data.FlushRaw() == ERROR_SUCCESS && ok;
    });
}

void BM_BatchedSetsCKWRegistry(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunBatches(state, data, [&](int round) {
        bool ok = true;
        {
            CKWRegistryBatch batch(data.RootKey());
            for (int i = 0; i < data.Count(); ++i) {
                ok = data.SetTyped(i, round) == KW_REGISTRY_SUCCESS && ok;
            }
        }
        return data.FlushRaw() == ERROR_SUCCESS && ok;
    });
}

void BM_BatchedSetsQSettings(benchmark::State& state, EKWLayout layout, EKWValueType type) {
    CKWSettingsData& data = Data(layout, type);
    RunBatches(state, data, [&](int round) {
        for (int i = 0; i < data.Count(); ++i) {
            data.SetQt(i, round);
        }
        data.Qt().sync();
        return data.Qt().status() == QSettings::NoError;
    });
}

// One set and one flush per iteration, under the key holding 10^4 values.
template <class DurableSet>
void RunDurableSets(benchmark::State& state, CKWSettingsData& data, DurableSet set) {
    int i = 0;
    int round = 1;
    for (auto _ : state) {
        if (!set(i, round)) {
            state.SkipWithError("a durable set failed");
            break;
        }
        if (++i == data.Count()) {
            i = 0;
            ++round;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_DurableSetsRaw(benchmark::State& state, EKWValueType type) {
    CKWSettingsData& data = Data(kOneKey, type);
    RunDurableSets(state, data, [&](int i, int round) {
        return data.SetRaw(i, round) == ERROR_SUCCESS && data.FlushRaw() == ERROR_SUCCESS;
    });
}

void BM_DurableSetsCKWRegistry(benchmark::State& state, EKWValueType type) {
    CKWSettingsData& data = Data(kOneKey, type);
    RunDurableSets(state, data, [&](int i, int round) {
        return data.SetTyped(i, round) == KW_REGISTRY_SUCCESS && data.FlushRaw() == ERROR_SUCCESS;
    });
}

void BM_DurableSetsQSettings(benchmark::State& state, EKWValueType type) {
    CKWSettingsData& data = Data(kOneKey, type);
    RunDurableSets(state, data, [&](int i, int round) {
        data.SetQt(i, round);
        data.Qt().sync();
        return data.Qt().status() == QSettings::NoError;
    });
}

// ------------------------------------------------------------------ enumeration and export

// Every sub-key of the spread layout's 10^4 keys per iteration.
void BM_EnumerateSubKeysRaw(benchmark::State& state) {
    CKWSettingsData& data = Data(kSpread, kString);
    HKEY parent = nullptr;
    RegOpenKeyExA(data.RootKey(), "Spread", 0, KEY_READ, &parent);
    DWORD count = 0;
    for (auto _ : state) {
        char name[256];
        DWORD length = sizeof name;
        for (count = 0; RegEnumKeyExA(parent, count, name, &length, nullptr, nullptr, nullptr,
                                      nullptr) == ERROR_SUCCESS;
             length = sizeof name) {
            ++count;
        }
    }
    RegCloseKey(parent);
    if (count != static_cast<DWORD>(data.Count())) {
        state.SkipWithError("the enumeration missed keys");
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void BM_EnumerateSubKeysQSettings(benchmark::State& state) {
    CKWSettingsData& data = Data(kSpread, kString);
    int count = 0;
    for (auto _ : state) {
        data.Qt().beginGroup("Spread");
        count = data.Qt().childGroups().size();
        data.Qt().endGroup();
    }
    if (count != data.Count()) {
        state.SkipWithError("the enumeration missed groups");
    }
    state.SetItemsProcessed(state.iterations() * count);
}

// The whole layout, 10^4 values, to a "REGEDIT4" file per iteration.
void BM_ExportTree(benchmark::State& state, EKWLayout layout) {
    CKWSettingsData& data = Data(layout, kString);
    const std::string file = (data.Folder() / "export.reg").string();
    data.Select();
    for (auto _ : state) {
        if (!CKWRegistry::WriteRegistryTreeToFile("HKCU\\Software\\Bench", file.c_str())) {
            state.SkipWithError("the export failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * data.Count());
}

}  // namespace

BENCHMARK_CAPTURE(BM_GetRaw, one_key_string, kOneKey, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetCKWRegistry, one_key_string, kOneKey, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetQSettings, one_key_string, kOneKey, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetRaw, one_key_dword, kOneKey, kDword)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetCKWRegistry, one_key_dword, kOneKey, kDword)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetQSettings, one_key_dword, kOneKey, kDword)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetRaw, spread_string, kSpread, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetCKWRegistry, spread_string, kSpread, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetQSettings, spread_string, kSpread, kString)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetRaw, spread_dword, kSpread, kDword)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetCKWRegistry, spread_dword, kSpread, kDword)->UseRealTime();
BENCHMARK_CAPTURE(BM_GetQSettings, spread_dword, kSpread, kDword)->UseRealTime();

BENCHMARK_CAPTURE(BM_BatchedSetsRaw, one_key_string, kOneKey, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsCKWRegistry, one_key_string, kOneKey, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsQSettings, one_key_string, kOneKey, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsRaw, one_key_dword, kOneKey, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsCKWRegistry, one_key_dword, kOneKey, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsQSettings, one_key_dword, kOneKey, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsRaw, spread_string, kSpread, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsCKWRegistry, spread_string, kSpread, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsQSettings, spread_string, kSpread, kString)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsRaw, spread_dword, kSpread, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsCKWRegistry, spread_dword, kSpread, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_BatchedSetsQSettings, spread_dword, kSpread, kDword)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_CAPTURE(BM_DurableSetsRaw, string, kString)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_CAPTURE(BM_DurableSetsCKWRegistry, string, kString)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_DurableSetsQSettings, string, kString)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_DurableSetsRaw, dword, kDword)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_CAPTURE(BM_DurableSetsCKWRegistry, dword, kDword)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_DurableSetsQSettings, dword, kDword)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

BENCHMARK(BM_EnumerateSubKeysRaw)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_EnumerateSubKeysQSettings)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_CAPTURE(BM_ExportTree, one_key, kOneKey)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(BM_ExportTree, spread, kSpread)->Unit(benchmark::kMillisecond)->UseRealTime();
