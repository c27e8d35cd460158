#include "command_line.h"

#include <algorithm>

namespace {

[[noreturn]] void fail(const std::string &text) {
    throw CLI::ParseError(text, CLI::ExitCodes::ExtrasError);
}

std::string names_of_commands(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::App *command : app.get_subcommands({})) names.push_back(command->get_name());
    return CLI::detail::join(names, "|");
}

bool is_option(const std::string &text) { return text.size() > 1 && text[0] == '-'; }

/** Splits the arguments of one command into options and files. */
class Reader {
  public:
    Reader(const CLI::App &command, std::vector<std::string> arguments)
        : command_(command), arguments_(std::move(arguments)) {
        while (at_ < arguments_.size()) take(arguments_[at_++]);
    }

    const std::vector<std::string> &options() const { return options_; }
    const std::vector<std::string> &files() const { return files_; }

  private:
    void take(const std::string &text) {
        if (text == "--") {
            while (at_ < arguments_.size()) take_file(arguments_[at_++]);
        } else if (!is_option(text)) {
            take_file(text);
        } else if (text[1] == '-') {
            const size_t end = std::min(text.find('='), text.size());
            take_option(text.substr(0, end), end < text.size() ? &text[end + 1] : nullptr);
        } else {
            take_letters(text);
        }
    }

    void take_file(const std::string &text) {
        const auto is_file = [](const CLI::Option *option) { return option->get_positional(); };
        const auto most = command_.get_options(is_file).size();
        if (files_.size() == most) fail("unexpected argument " + text);
        files_.push_back(text);
    }

    /** The first letter that takes a value gets the rest of the text. */
    void take_letters(const std::string &text) {
        for (size_t i = 1; i < text.size(); i++) {
            const std::string name = {'-', text[i]};
            const bool last = i + 1 == text.size() || takes_value(find(name));
            take_option(name, last && i + 1 < text.size() ? &text[i + 1] : nullptr);
            if (last) return;
        }
    }

    static bool takes_value(const CLI::Option &option) {
        return option.get_items_expected_max() > 0;
    }

    const CLI::Option &find(const std::string &name) const {
        const CLI::Option *option = command_.get_option_no_throw(name);
        if (!option) fail("unknown option " + name);
        return *option;
    }

    void take_option(const std::string &name, const char *value) {
        const CLI::Option &option = find(name);
        const std::string whole = "--" + option.get_lnames().at(0);
        if (!takes_value(option)) {
            if (value) fail(name + ": takes no value");
            return options_.push_back(whole);
        }
        const auto same = [&](const std::string &text) {
            return text.compare(0, whole.size() + 1, whole + "=") == 0;
        };
        if (std::any_of(options_.begin(), options_.end(), same)) fail(name + ": given twice");
        const std::string text = value ? value : next_value();
        if (text.empty()) fail(name + ": expected a value");
        options_.push_back(whole + "=" + text);
    }

    /** The next argument; empty if there is none or it is an option. */
    std::string next_value() {
        if (at_ == arguments_.size()) return "";
        const std::string &text = arguments_[at_];
        const std::string name = text.substr(0, text.find('='));
        if (is_option(text) && (text == "--" || command_.get_option_no_throw(name))) return "";
        at_++;
        return text;
    }

    const CLI::App &command_;
    std::vector<std::string> arguments_;
    std::vector<std::string> options_, files_;
    size_t at_ = 0;
};

}  // namespace

const CLI::App *find_command(const CLI::App &app, const std::string &name) {
    for (const CLI::App *command : app.get_subcommands({}))
        if (command->get_name() == name) return command;
    return nullptr;
}

std::vector<std::string> normalized(const CLI::App &app, int argc, char **argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const std::string first = arguments.empty() ? "" : arguments[0];
    if (is_option(first) && app.get_option_no_throw(first)) {
        if (arguments.size() > 1) fail("unexpected argument " + arguments[1]);
        return arguments;
    }
    const std::string got = arguments.empty() ? "" : ", got " + first;
    const CLI::App *command = find_command(app, first);
    if (!command) fail("expected a command first, one of " + names_of_commands(app) + got);
    arguments.erase(arguments.begin());
    const Reader reader(*command, arguments);
    std::vector<std::string> whole{first};
    whole.insert(whole.end(), reader.options().begin(), reader.options().end());
    if (!reader.files().empty()) whole.emplace_back("--");
    whole.insert(whole.end(), reader.files().begin(), reader.files().end());
    std::reverse(whole.begin(), whole.end());
    return whole;
}

void require_alone(const CLI::App &command, const CLI::Option &option,
                   const std::vector<std::string> &allowed) {
    for (const CLI::Option *other : command.get_options()) {
        const std::string name = other->get_name();
        const bool fine = std::find(allowed.begin(), allowed.end(), name) != allowed.end();
        if (other != &option && other->count() > 0 && !fine)
            fail(name + " has no effect with " + option.get_name());
    }
}
