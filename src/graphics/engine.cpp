// The engine in use, its callbacks into the runtime, and the engine that does nothing.

#include "graphics/engine.h"

#include <algorithm>
#include <cstring>

#include "graphics/callback.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// No windows, no objects: creation fails, dialogs are cancelled, waits end at once.
class NoEngine final : public SeloEngine {
  public:
    void selo_start(int) override {}
    void selo_set_eval_hook(void (*)(miniM *)) override {}
    void selo_set_error_hook(void (*)(const char *)) override {}
    void selo_set_free_hook(void (*)(Mm *)) override {}
    double selo_new_object(const char *, int) override { return -1; }
    int selo_is_handle(double) override { return 0; }
    miniM *selo_get_property(double, const char *) override { return &empty_; }
    void selo_set_property(double, const char *, miniM *) override {}
    double selo_current_figure() override { return -1; }
    void selo_set_line_data(double, int, double *, int, double *, int, double *, int) override {}
    void selo_set_rotate_axes(double) override {}
    void selo_set_surface_axes(double) override {}
    void selo_flush() override {}
    void selo_quit(int) override {}
    void selo_set_console_mode(int) override {}
    void selo_set_application_handle(void *) override {}
    void selo_set_application_key_handle(void *) override {}
    void selo_set_embedded(int) override {}
    int selo_wait_button(int poll) override { return poll ? -1 : 0; }
    void selo_wait_object(double) override {}
    void selo_ui_wait() override {}
    void selo_ui_resume() override {}
    int selo_input_dialog(const char *, char **, int *, char **, int, char **, int) override { return 0; }
    int selo_menu_dialog(char **, int) override { return 0; }
    int selo_message_dialog(const char *, const char *, const char *) override { return 0; }
    int selo_question_dialog(const char *, const char *, const char *, char **, int, int standard) override {
        return standard;
    }
    int selo_open_file_dialog(const char *, const char *, char *file, int, char *path, int) override {
        *file = *path = '\0';
        return 0;
    }
    int selo_save_file_dialog(const char *f, const char *t, char *file, int n, char *path, int m) override {
        return selo_open_file_dialog(f, t, file, n, path, m);
    }
    int selo_color_dialog(int, int) override { return -1; }

  private:
    miniM empty_;
};

NoEngine &no_engine() {
    static NoEngine engine;
    return engine;
}

constinit SeloEngine *current = nullptr;

void run_callback(miniM *text) {
    if (!text || text->count() < 1) return;
    kn_size dims[4];
    std::copy_n(text->dims(), 4, dims);
    Mm statement(0, 0, 0, text->ndims(), dims, kn_double);
    const int n = text->count();
    if (statement.getnnz() < n) return;
    std::memcpy(statement.addr(), text->addr(), sizeof(double) * static_cast<size_t>(n));
    statement.setstr(1);
    evaluate_guarded(statement);
}

void report(const char *text) { error("%s", text); }

void release_value(Mm *value) { delete value; }

} // namespace

SeloEngine &engine() { return current ? *current : no_engine(); }

void start_engine() {
    engine().selo_start(QUORVEX_VERSION);
    engine().selo_set_eval_hook(run_callback);
    engine().selo_set_error_hook(report);
    engine().selo_set_free_hook(release_value);
}

void stop_engine() {
    engine().selo_set_eval_hook(nullptr);
    engine().selo_set_error_hook(nullptr);
    engine().selo_set_free_hook(nullptr);
}

} // namespace kn

// An engine that is destroyed while it is in use, such as a program's static one at exit, is not called
// again.
SeloEngine::~SeloEngine() {
    if (kn::current == this) kn::current = nullptr;
}

SeloEngine *kn_set_engine(SeloEngine *engine) {
    SeloEngine *old = kn::current;
    kn::stop_engine();
    kn::current = engine;
    kn::start_engine();
    return old;
}
