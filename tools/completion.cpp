// Completions for bash and zsh.
#include "manual.h"

#include <algorithm>

namespace trelm {
namespace {

/// What stands behind an option. One that is bare in one section and takes a file in another counts as the
/// latter.
enum class Value { none, file, folder, other };

struct Option {
    std::string_view flag;
    std::string_view argument;
    std::string_view description;
    Value value = Value::none;
    bool mayBeBare = false;
};

Value valueOf(const GuideEntry &entry)
{
    if (entry.argument.empty())
        return Value::none;
    if (entry.argument.ends_with("Name") || entry.argument == "name")
        return Value::file;
    return entry.argument == "dir" ? Value::folder : Value::other;
}

/// Every option once, with its first description.
std::vector<Option> options()
{
    std::vector<Option> all;
    for (const GuideSection &section : guideSections()) {
        for (const GuideBlock &block : guideBlocks(section)) {
            for (const GuideEntry &entry : block.entries) {
                auto known = std::ranges::find(all, entry.flag, &Option::flag);
                if (known == all.end())
                    known =
                        all.insert(known, {entry.flag, entry.argument, entry.description, valueOf(entry)});
                known->mayBeBare = known->mayBeBare || entry.argument.empty();
                if (known->value == Value::none && !entry.argument.empty()) {
                    known->argument = entry.argument;
                    known->value = valueOf(entry);
                }
            }
        }
    }
    return all;
}

/// The names of the options of a kind, with a separator between them.
std::string names(const std::vector<Option> &all, std::string_view separator, bool (*isMeant)(const Option &))
{
    std::string text;
    for (const Option &option : all)
        if (isMeant(option))
            text.append(text.empty() ? "" : separator).append(option.flag);
    return text;
}

constexpr std::string_view bashText = R"(# Completion of trelm in bash, made from its table of options.
_trelm()
{
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case ${COMP_WORDS[COMP_CWORD-1]} in
    @MAYBE@)
        # With a file behind it in one mode, bare in another.
        if [[ $word != -* ]]; then
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
        fi
        ;;
    @FILE@)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    @FOLDER@)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    @OTHER@)
        return
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W '@ALL@' -- "$word")
}
complete -F _trelm trelm
)";

std::string zshSpec(const Option &option)
{
    std::string text = replaced(option.description, "]", "\\]");
    text = std::string(option.flag) + "[" + text + "]";
    const std::string argument(option.argument);
    switch (option.value) {
    case Value::none:
        break;
    case Value::file: // two colons: the word may be missing
        text += (option.mayBeBare ? "::" : ":") + argument + ":_files";
        break;
    case Value::folder:
        text += ":" + argument + ":_files -/";
        break;
    case Value::other: // the further words of a list are not completed
        text += ":" + argument + ": ";
        break;
    }
    return "    '" + replaced(text, "'", "'\\''") + "' \\\n";
}

} // namespace

std::string bashCompletion()
{
    const std::vector<Option> all = options();
    constexpr auto isMaybe = [](const Option &o) { return o.value == Value::file && o.mayBeBare; };
    constexpr auto isFile = [](const Option &o) { return o.value == Value::file && !o.mayBeBare; };
    constexpr auto isFolder = [](const Option &o) { return o.value == Value::folder; };
    constexpr auto isOther = [](const Option &o) { return o.value == Value::other; };
    constexpr auto isAny = [](const Option &) { return true; };
    std::string text = replaced(bashText, "@MAYBE@", names(all, "|", isMaybe));
    text = replaced(text, "@FILE@", names(all, "|", isFile));
    text = replaced(text, "@FOLDER@", names(all, "|", isFolder));
    text = replaced(text, "@OTHER@", names(all, "|", isOther));
    return replaced(text, "@ALL@", names(all, " ", isAny));
}

std::string zshCompletion()
{
    std::string text =
        "#compdef trelm\n# Completion of trelm in zsh, made from its table of options.\n_arguments \\\n";
    for (const Option &option : options())
        text += zshSpec(option);
    return text + "    '*:value: '\n";
}

} // namespace trelm
