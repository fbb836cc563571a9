// Reading registry values beside the raw calls that it takes, under the same key.

#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/registry/KelInsReg.h>
#include <array>
#include <benchmark/benchmark.h>

namespace {

using namespace KelInsReg;

constexpr auto kView = RegistryView::Force64RegView;
constexpr std::size_t kTextBytes = 256;

/// One key with an integer and a text, open.
class Values
{
public:
    Values()
    {
        SetValue(key_, "integer", 5);
        SetValue(key_, "text", R"(C:\Program Files\Orchard\bin\pear.exe)");
    }

    const Key& Open() const { return key_; }

    std::string Path() const { return root_.Path(); }

    std::wstring WidePath() const { return {path_.begin(), path_.end()}; }

private:
    RegistryRoot root_;
    std::string path_ = root_.Path();
    Key key_ = OpenKey(RootKey::CurrentUser, path_, AccessRights::ReadWrite, kView);
};

Values& Stored()
{
    static Values values;
    return values;
}

std::int32_t ReadIntegerRaw(HKEY key)
{
    std::int32_t value = 0;
    DWORD size = sizeof(value);
    ::RegQueryValueExW(key, L"integer", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size);
    return value;
}

std::array<wchar_t, kTextBytes> ReadTextRaw(HKEY key)
{
    std::array<wchar_t, kTextBytes> text; // filled below
    DWORD size = 0;
    ::RegQueryValueExW(key, L"text", nullptr, nullptr, nullptr, &size);
    ::RegQueryValueExW(key, L"text", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size);
    return text;
}

template <typename Call>
auto BelowRaw(const std::wstring& path, const Call& call)
{
    HKEY key = nullptr;
    ::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ | KEY_WOW64_64KEY, &key);
    const auto result = call(key);
    ::RegCloseKey(key);
    return result;
}

template <typename Value, typename... Place>
Value Read(const Place&... place)
{
    Value value{};
    GetValue(place..., value, kView);
    return value;
}

template <typename Call>
void Register(const char* name, const Call& call)
{
    benchmark::RegisterBenchmark(name, [call](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(call());
    });
}

const bool kRegistered = [] {
    Register("registry integer/KelInsInfra", [] { return Read<std::int32_t>(Stored().Open(), "integer"); });
    Register("registry integer/raw calls", [] { return ReadIntegerRaw(Stored().Open().GetKey()); });
    Register("registry text/KelInsInfra", [] { return Read<std::string>(Stored().Open(), "text"); });
    Register("registry text/raw calls", [] { return ReadTextRaw(Stored().Open().GetKey()); });
    Register("registry integer below a root key/KelInsInfra",
             [path = Stored().Path()] { return Read<std::int32_t>(RootKey::CurrentUser, path, "integer"); });
    Register("registry integer below a root key/raw calls",
             [path = Stored().WidePath()] { return BelowRaw(path, ReadIntegerRaw); });
    Register("registry text below a root key/KelInsInfra",
             [path = Stored().Path()] { return Read<std::string>(RootKey::CurrentUser, path, "text"); });
    Register("registry text below a root key/raw calls",
             [path = Stored().WidePath()] { return BelowRaw(path, ReadTextRaw); });
    return true;
}();

} // namespace
