// A session: lines are read, carried out, and survive their errors; command words; the hooks of the library.
#ifndef HOST_SESSION_H
#define HOST_SESSION_H

#include <functional>
#include <set>
#include <string>

#include "host/console.h"
#include "host/evaluator.h"

class Session {
  public:
    explicit Session(const std::string &host_directory);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    void run_console();

  private:
    using LineSource = std::function<Line(std::string &line, bool continued)>;
    enum Outcome { done, incomplete, failed };

    void run_lines(const std::string &file, const LineSource &next, bool survives);
    Outcome execute(const std::string &text, bool whole);
    Outcome attempt(const std::string &text, bool whole);
    Values run_script(const Values &arguments);
    bool is_command(const std::string &word, bool alone) const;
    void command(const Statement &statement, bool quiet);

    static int eval_hook(const char *statement);
    static Mm feval_hook(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);

    static Session *current; // the hooks are plain functions
    Evaluator evaluator_;
    kn_path_record *path_;
    kn_error_stack_t &stack_;
    std::set<std::string> files_; // the names on the stack, which borrows them
    int nesting_ = 0;             // of texts that are carried out inside each other
    bool finished_ = false;
};

#endif
