// The boundary to the graphics engine: all windows, dialogs, charts and image files are objects of an engine
// behind this one interface. The library drives whatever engine the host sets; without one, an engine that
// does nothing stands in.
//
// A handle is a double: 0 the root, a figure's number for a figure, a negative value for "none", any other
// number an object of the engine's. Texts are zero-terminated. Modes and flags are ints.
#ifndef QUORVEX_SELO_H
#define QUORVEX_SELO_H

#include "quorvex/export.h"

class Mm;

// The one record that crosses the boundary: a small real array. Who makes it owns it: the engine copies what
// it is handed, the library copies what it is given.
class QUORVEX_API miniM {
  public:
    // Count and up to four extents; unset extents are 0.
    struct Dims {
        int ndims;
        int dims[4];
        Dims(int rows, int cols, int depth = 0); // a depth below 1 is left out
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
    // Address of the element at an offset from 0; the element count is the end. "miniM addr: offset out of
    // range."
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

    // Hand-shake, first of all calls, and the three calls back: to run a callback text, to report an error,
    // to release a value.
    virtual void selo_start(int version) = 0;
    virtual void selo_set_eval_hook(void (*hook)(miniM *)) = 0;
    virtual void selo_set_error_hook(void (*hook)(const char *)) = 0;
    virtual void selo_set_free_hook(void (*hook)(Mm *)) = 0;

    // Objects and their properties. A new object answers its handle, negative on failure; number -1 lets the
    // engine choose.
    virtual double selo_new_object(const char *type, int number) = 0;
    virtual int selo_is_handle(double handle) = 0;
    virtual miniM *selo_get_property(double handle, const char *name) = 0; // the record stays the engine's
    virtual void selo_set_property(double handle, const char *name, miniM *value) = 0;
    virtual double selo_current_figure() = 0; // below 0 when there is none
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

    // Waits. selo_wait_button: mode 0 waits, 1 polls; answers 0 for a button, 1 for a key, in
    // polling a negative number where there never is one.
    virtual int selo_wait_button(int mode) = 0;
    virtual void selo_wait_object(double handle) = 0;
    virtual void selo_ui_wait() = 0;
    virtual void selo_ui_resume() = 0;

    // Dialogs. 0 on cancel; menu and question answer an index; the file dialogs empty both buffers on cancel;
    // a colour is packed as 0xBBGGRR, below 0 on cancel.
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

// Makes `engine` (null: the one that does nothing) the engine, with the hand-shake and the three hooks, and
// takes the hooks from the old one, which is returned (null if it was the one that does nothing). The engine
// stays the caller's.
QUORVEX_API SeloEngine *kn_set_engine(SeloEngine *engine);

#endif
