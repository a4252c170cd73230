// The scripts by which shells complete a command line.
#include "cli/completion.h"

#include <algorithm>
#include <string_view>

#include "analysis/export_forms.h"
#include "fit/require.h"

namespace corvinade::cli {

namespace {

constexpr const char* kProgram = "corvinade-cli";

// An option as the scripts need it.
struct Choice {
    std::vector<std::string> Long, Short;  // without dashes
    std::string Words;                     // the first line of what the help says
    bool TakesValue = false, TakesFile = false;
    std::vector<std::string> Values;  // it has these alone
};

struct Command {
    std::string Name, Words;
    std::vector<Choice> Options;
};

// A text on one line, without what is a sign to one of the shells.
std::string Plain(std::string_view text) {
    std::string plain;
    for (const char c : text) {
        if (c == '\n') {
            plain += ' ';
        } else if (std::string_view("'\"`$\\[]:").find(c) == std::string_view::npos) {
            plain += c;
        }
    }
    return plain;
}

// "a|b|c" are values where none of them is in capital letters: those stand for something else.
std::vector<std::string> ValuesOf(const std::string& type) {
    if (type == "FORM") return analysis::ExportFormNames();
    std::vector<std::string> values;
    std::string_view rest = type;
    for (bool more = true; more;) {
        const std::size_t bar = rest.find('|');
        values.emplace_back(rest.substr(0, bar));
        more = bar != std::string_view::npos;
        if (more) rest.remove_prefix(bar + 1);
    }
    const auto placeholder = [](const std::string& value) {
        return value.empty() || std::any_of(value.begin(), value.end(), [](char c) {
                   return !((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-');
               });
    };
    std::erase_if(values, placeholder);
    return type.find('|') == std::string::npos ? std::vector<std::string>() : values;
}

Choice ChoiceOf(const CLI::Option& option) {
    Choice choice;
    choice.Long = option.get_lnames();
    choice.Short = option.get_snames();
    choice.Words = Plain(option.get_description());
    choice.TakesValue = option.get_items_expected_max() > 0;
    const std::string type = option.get_type_name();
    choice.Values = ValuesOf(type);
    choice.TakesFile = TakesFile(option);
    return choice;
}

std::vector<Command> CommandsOf(const CLI::App& app) {
    std::vector<Command> commands;
    for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
        Command command{sub->get_name(), Plain(sub->get_description()), {}};
        for (const CLI::Option* option : OptionsOf(*sub))
            if (Choice choice = ChoiceOf(*option); !choice.Long.empty() || !choice.Short.empty())
                command.Options.push_back(std::move(choice));
        commands.push_back(std::move(command));
    }
    return commands;
}

// Each of an option's names with its dashes.
std::vector<std::string> NamesOf(const Choice& choice) {
    std::vector<std::string> names;
    for (const std::string& name : choice.Long) names.push_back("--" + name);
    for (const std::string& name : choice.Short) names.push_back("-" + name);
    return names;
}

std::string Joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

std::string Heading(const char* shell) {
    return std::string("# Completes ") + kProgram + " in " + shell + "; made from its table of commands.\n";
}

// --- The three --------------------------------------------------------------------------------------------

std::string Bash(const std::vector<Command>& commands) {
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const Command& command : commands) names.push_back(command.Name);
    std::string text = Heading("bash") +
                       "_corvinade_cli() {\n"
                       "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} name= i\n"
                       "    COMPREPLY=()\n"
                       "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
                       "        case ${COMP_WORDS[i]} in -*) ;; *) name=${COMP_WORDS[i]}; break ;; esac\n"
                       "    done\n"
                       "    case $name in\n"
                       "    '')\n"
                       "        COMPREPLY=($(compgen -W '" +
                       Joined(names, " ") +
                       " --help --version' -- \"$cur\"))\n"
                       "        return ;;\n";
    for (const Command& command : commands) {
        std::vector<std::string> options;
        std::string values, silent;
        for (const Choice& choice : command.Options) {
            const std::vector<std::string> all = NamesOf(choice);
            options.insert(options.end(), all.begin(), all.end());
            if (!choice.Values.empty()) {
                values += "        " + Joined(all, "|") + ")\n            COMPREPLY=($(compgen -W '" +
                          Joined(choice.Values, " ") + "' -- \"$cur\"))\n            return ;;\n";
            } else if (choice.TakesValue && !choice.TakesFile) {
                silent += (silent.empty() ? "" : "|") + Joined(all, "|");
            }
        }
        if (!silent.empty()) values += "        " + silent + ")\n            return ;;\n";
        text += "    " + command.Name + ")\n";
        if (!values.empty()) text += "        case $prev in\n" + values + "        esac\n";
        text += "        if [[ $cur == -* ]]; then\n            COMPREPLY=($(compgen -W '" +
                Joined(options, " ") + "' -- \"$cur\"))\n            return\n        fi ;;\n";
    }
    return text +
           "    esac\n"
           "    COMPREPLY=($(compgen -f -- \"$cur\"))\n"
           "}\n"
           "complete -o filenames -F _corvinade_cli " +
           kProgram + "\n";
}

std::string Zsh(const std::vector<Command>& commands) {
    std::string text = std::string("#compdef ") + kProgram + "\n" + Heading("zsh") +
                       "_corvinade_cli() {\n"
                       "    local -a commands\n"
                       "    commands=(\n";
    for (const Command& command : commands) text += "        '" + command.Name + ":" + command.Words + "'\n";
    text +=
        "    )\n"
        "    if (( CURRENT == 2 )); then\n"
        "        _describe command commands\n"
        "        return\n"
        "    fi\n"
        "    case $words[2] in\n";
    for (const Command& command : commands) {
        text += "    " + command.Name + ")\n        _arguments";
        for (const Choice& choice : command.Options)
            for (const std::string& name : NamesOf(choice)) {
                text += " \\\n            '*" + name + "[" + choice.Words + "]";
                if (!choice.Values.empty()) {
                    text += ":value:(" + Joined(choice.Values, " ") + ")";
                } else if (choice.TakesValue) {
                    text += choice.TakesFile ? ":file:_files" : ":value: ";
                }
                text += "'";
            }
        text += " \\\n            '*:file:_files' ;;\n";
    }
    return text + "    esac\n}\n_corvinade_cli \"$@\"\n";
}

std::string Fish(const std::vector<Command>& commands) {
    const std::string begin = std::string("complete -c ") + kProgram;
    std::string text = Heading("fish");
    for (const Command& command : commands)
        text += begin + " -n __fish_use_subcommand -f -a " + command.Name + " -d '" + command.Words + "'\n";
    for (const Command& command : commands)
        for (const Choice& choice : command.Options) {
            text += begin + " -n '__fish_seen_subcommand_from " + command.Name + "'";
            for (const std::string& name : choice.Long) text += " -l " + name;
            for (const std::string& name : choice.Short) text += " -s " + name;
            if (!choice.Values.empty()) {
                text += " -x -a '" + Joined(choice.Values, " ") + "'";
            } else if (choice.TakesValue) {
                text += choice.TakesFile ? " -r" : " -x";
            }
            text += " -d '" + choice.Words + "'\n";
        }
    return text;
}

struct Shell {
    const char* Name;
    std::string (*Script)(const std::vector<Command>&);
};
constexpr Shell kShells[] = {{"bash", Bash}, {"zsh", Zsh}, {"fish", Fish}};

}  // namespace

bool TakesFile(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const auto says = [&type](const char* word) { return type.find(word) != std::string::npos; };
    return says("FILE") || says("OUT") || says("DIR") || says("FOLDER");
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command) {
    std::vector<const CLI::Option*> options = command.get_options();
    for (const CLI::App* group : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (!group->get_name().empty()) continue;
        for (const CLI::Option* option : OptionsOf(*group))
            if (std::find(options.begin(), options.end(), option) == options.end()) options.push_back(option);
    }
    return options;
}

std::vector<std::string> CompletionShells() {
    std::vector<std::string> names;
    for (const Shell& shell : kShells) names.emplace_back(shell.Name);
    return names;
}

std::string CompletionScript(const CLI::App& app, const std::string& shell) {
    const auto* const found = std::find_if(std::begin(kShells), std::end(kShells),
                                           [&shell](const Shell& each) { return shell == each.Name; });
    Require(found != std::end(kShells));
    return found->Script(CommandsOf(app));
}

}  // namespace corvinade::cli
