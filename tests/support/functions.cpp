#include "support/functions.h"

#include <cstdio>
#include <filesystem>
#include <type_traits>
#include <utility>

#include "core/scratch.h"
#include "platform/platform.h"

namespace test {
namespace {

constexpr size_t max_count = 6;

template <class F, size_t... k> Mm call(F f, const Mm *x, std::index_sequence<k...>) {
    if constexpr (std::is_void_v<decltype(f(x[k]...))>) {
        f(x[k]...);
        return x_M;
    } else {
        return f(x[k]...);
    }
}

template <size_t... legal, class F> void add(std::vector<Function> &list, const char *name, F) {
    auto one = [&]<size_t n>(std::integral_constant<size_t, n>) {
        list.push_back({name, static_cast<int>(n), ((n == legal) || ...),
                        [](const Mm *x) { return call(F(), x, std::make_index_sequence<n>()); }});
    };
    [&]<size_t... n>(std::index_sequence<n...>) { (one(std::integral_constant<size_t, n>()), ...); }
    (std::make_index_sequence<max_count + 1>());
}

std::vector<Function> make_list() {
    std::vector<Function> list;
#define ROW(name, description, ...) \
    add<__VA_ARGS__>(list, #name, [](const auto &...x) { return name(x...); });
    QUORVEX_FUNCTIONS(ROW)
#undef ROW
    return list;
}

} // namespace

const std::vector<Function> &functions() {
    static const std::vector<Function> list = make_list();
    return list;
}

Unattended::Unattended()
    : before_(std::filesystem::current_path().string()),
      home_((std::filesystem::temp_directory_path() / ("kn_home_" + std::to_string(kn::os::process_id())))
                .string()),
      old_input_(kn_set_input_handler(
          [](char *buf, int size) { std::snprintf(buf, static_cast<size_t>(size), "1 2 x"); })),
      old_key_(kn_set_kbhit_handler([] { return 1; })) {
    kn::alloc_probe.largest = 1 << 17;
    std::filesystem::create_directory(home_);
    go_home();
}

void Unattended::go_home() const {
    fclose(TM("all"));
    std::filesystem::current_path(home_);
}

Unattended::~Unattended() {
    go_home();
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(home_);
    kn::alloc_probe.largest = 0;
    kn_set_kbhit_handler(old_key_);
    kn_set_input_handler(old_input_);
}

} // namespace test
