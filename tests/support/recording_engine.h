// A graphics engine that writes down what it is asked, answers from its fields, and keeps the hooks it is
// given.
#ifndef QUORVEX_TESTS_RECORDING_ENGINE_H
#define QUORVEX_TESTS_RECORDING_ENGINE_H

#include <string>
#include <vector>

#include "quorvex/selo.h"

namespace test {

class RecordingEngine : public SeloEngine {
  public:
    std::vector<std::string> calls;
    double figure = -1; // the current one
    int button = 0;     // what a wait answers
    miniM property;
    void (*eval)(miniM *) = nullptr;
    void (*error)(const char *) = nullptr;
    void (*free)(Mm *) = nullptr;

    void selo_start(int version) override { note("start", version); }
    void selo_set_eval_hook(void (*hook)(miniM *)) override { note("eval", hook != nullptr), eval = hook; }
    void selo_set_error_hook(void (*hook)(const char *)) override {
        note("error", hook != nullptr), error = hook;
    }
    void selo_set_free_hook(void (*hook)(Mm *)) override { note("free", hook != nullptr), free = hook; }

    double selo_new_object(const char *type, int number) override { return note(type, number), 1.5; }
    int selo_is_handle(double) override { return note("is_handle"), 1; }
    miniM *selo_get_property(double, const char *name) override { return note(name), &property; }
    void selo_set_property(double, const char *name, miniM *) override { note(name); }
    double selo_current_figure() override { return figure; }
    void selo_set_line_data(double, int n, double *, int, double *, int, double *, int) override {
        note("line", n);
    }
    void selo_set_rotate_axes(double) override { note("rotate_axes"); }
    void selo_set_surface_axes(double) override { note("surface_axes"); }

    void selo_flush() override { note("flush"); }
    void selo_quit(int code) override { note("quit", code); }

    void selo_set_console_mode(int mode) override { note("console_mode", mode); }
    void selo_set_application_handle(void *) override { note("application_handle"); }
    void selo_set_application_key_handle(void *) override { note("application_key_handle"); }
    void selo_set_embedded(int flag) override { note("embedded", flag); }

    int selo_wait_button(int mode) override { return note("wait_button", mode), button; }
    void selo_wait_object(double) override { note("wait_object"); }
    void selo_ui_wait() override { note("ui_wait"); }
    void selo_ui_resume() override { note("ui_resume"); }

    int selo_input_dialog(const char *, char **, int *, char **, int n, char **, int) override {
        return note("input", n), 0;
    }
    int selo_menu_dialog(char **, int count) override { return note("menu", count), 0; }
    int selo_message_dialog(const char *text, const char *, const char *) override { return note(text), 0; }
    int selo_question_dialog(const char *text, const char *, const char *, char **, int, int n) override {
        return note(text), n;
    }
    int selo_open_file_dialog(const char *, const char *, char *file, int, char *path, int) override {
        return note("open_file"), *file = *path = '\0', 0;
    }
    int selo_save_file_dialog(const char *, const char *, char *file, int, char *path, int) override {
        return note("save_file"), *file = *path = '\0', 0;
    }
    int selo_color_dialog(int, int) override { return note("color"), -1; }

  private:
    void note(const char *what) { calls.push_back(what); }
    void note(const char *what, int n) { calls.push_back(std::string(what) + " " + std::to_string(n)); }
};

} // namespace test

#endif
