// The interface to the graphics engine, which owns all windows, dialogs, charts and image files. The library
// uses the engine that the host sets; by default it uses one that does nothing.
//
// A handle is a double: 0 is the root, the number of a figure is the handle of the figure, a negative value
// is "none", and any other number is an object of the engine. Texts are null-terminated. Modes and flags are
// ints.
#ifndef QUORVEX_SELO_H
#define QUORVEX_SELO_H

#include "quorvex/export.h"

class Mm;

// A small real array, the only record exchanged with the engine. Its creator owns it: the engine copies the
// records that it receives, and so does the library.
class QUORVEX_API miniM {
  public:
    // The number of dimensions and up to four sizes; unset sizes are 0.
    struct Dims {
        int ndims;
        int dims[4];
        Dims(int rows, int cols, int depth = 0); // a depth below 1 is omitted
        Dims(int n, const int *extents);
    };

    miniM(); // 0 by 0
    // Zero-filled. "Out of memory!" leaves it 0 by 0 when the error handler returns.
    explicit miniM(const Dims &d, int is_string = 0);
    ~miniM();
    miniM(const miniM &) = delete;
    miniM &operator=(const miniM &) = delete;

    int count() const { return dims_[0] * dims_[1] * dims_[2] * dims_[3]; }
    int ndims() const { return ndims_; }
    const int *dims() const { return dims_; }
    int is_string() const { return is_string_; }
    // Element k, from 1; "miniM.r: r out of range" gives a scratch element.
    double &r(int k);
    // Address of the element at an offset from 0; the number of elements is the end. "miniM addr: offset out
    // of range."
    double *addr(int offset = 0);

  private:
    int ndims_;
    int dims_[4];
    int is_string_;
    double *data_;
};

// The 29 operations of an engine.
class QUORVEX_API SeloEngine {
  public:
    virtual ~SeloEngine();

    // The handshake, which is the first call, and three hooks for the engine: to run a callback text, to
    // report an error, to release a value.
    virtual void selo_start(int version) = 0;
    virtual void selo_set_eval_hook(void (*hook)(miniM *)) = 0;
    virtual void selo_set_error_hook(void (*hook)(const char *)) = 0;
    virtual void selo_set_free_hook(void (*hook)(Mm *)) = 0;

    // Objects and their properties. selo_new_object returns the handle, negative on failure; with number -1
    // the engine chooses it.
    virtual double selo_new_object(const char *type, int number) = 0;
    virtual int selo_is_handle(double handle) = 0;
    virtual miniM *selo_get_property(double handle, const char *name) = 0; // the engine owns the record
    virtual void selo_set_property(double handle, const char *name, miniM *value) = 0;
    virtual double selo_current_figure() = 0; // negative when there is none
    virtual void selo_set_line_data(double handle, int n, double *x, int x_stride, double *y, int y_stride,
                                    double *z, int last) = 0;
    virtual void selo_set_rotate_axes(double handle) = 0;
    virtual void selo_set_surface_axes(double handle) = 0;

    // Drawing and the end.
    virtual void selo_flush() = 0;
    virtual void selo_quit(int code) = 0;

    // The host's windows.
    virtual void selo_set_console_mode(int mode) = 0;
    virtual void selo_set_application_handle(void *window) = 0;
    virtual void selo_set_application_key_handle(void *window) = 0;
    virtual void selo_set_embedded(int flag) = 0;

    // Waits. selo_wait_button: mode 0 waits, 1 polls; returns 0 for a button, 1 for a key, and when polling a
    // negative number if there is none.
    virtual int selo_wait_button(int mode) = 0;
    virtual void selo_wait_object(double handle) = 0;
    virtual void selo_ui_wait() = 0;
    virtual void selo_ui_resume() = 0;

    // Dialogs return 0 on cancel. Menu and question return an index; the file dialogs empty both buffers on
    // cancel; a colour is packed as 0xBBGGRR, negative on cancel.
    virtual int selo_input_dialog(const char *title, char **prompts, int *lines, char **defaults, int count,
                                  char **answers, int size) = 0;
    virtual int selo_menu_dialog(char **items, int count) = 0;
    virtual int selo_message_dialog(const char *text, const char *title, const char *icon) = 0;
    virtual int selo_question_dialog(const char *question, const char *title, const char *icon,
                                     char **buttons, int count, int standard) = 0;
    virtual int selo_open_file_dialog(const char *filter, const char *title, char *file, int file_size,
                                      char *path, int path_size) = 0;
    virtual int selo_save_file_dialog(const char *filter, const char *title, char *file, int file_size,
                                      char *path, int path_size) = 0;
    virtual int selo_color_dialog(int owner, int initial) = 0;
};

// Sets the engine (null: the one that does nothing), performs the handshake and sets its three hooks; clears
// the hooks of the previous engine and returns it (null for the one that does nothing). The caller keeps
// ownership.
QUORVEX_API SeloEngine *kn_set_engine(SeloEngine *engine);

#endif
