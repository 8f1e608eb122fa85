#include "gtk/AdministratorGtk.h"

#include "base/Executor.h"
#include "gtk/GLibText.h"
#include "gtk/ShellProcess.h"
#include "gtk/standin/StandInPrograms.h"

#include <utility>

namespace brevanta {

namespace {

using Result = std::expected<std::string, AdministratorError>;

bool isDevelopmentRoot(const std::filesystem::path& root)
{
    std::error_code error;
    return std::filesystem::is_directory(root, error) && !std::filesystem::equivalent(root, "/", error) && !error;
}

Result failed(std::string_view message, int status = 0)
{
    return std::unexpected(AdministratorError {
        .kind = AdministratorError::Kind::scriptFailed, .message = validUtf8(message), .number = status });
}

std::string withoutLineEnd(std::string text)
{
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

Result resultOf(ShellEnd ended)
{
    if (!ended.status)
        return std::unexpected(AdministratorError { .kind = AdministratorError::Kind::noResult });
    if (*ended.status != 0)
        return failed(withoutLineEnd(std::move(ended.errors)), *ended.status);
    return withoutLineEnd(std::move(ended.output));
}

}

struct AdministratorGtk::Run {
    std::string script;
    std::function<void(Result)> onEnd;
    std::unique_ptr<Gtk::Dialog> dialog {};
    Gtk::Entry* password {}; // In the dialog, as the next.
    Gtk::Label* complaint {};
    std::unique_ptr<ShellProcess> shell {};
};

AdministratorGtk::AdministratorGtk(
    Gtk::Window& mainWindow, Executor& mainThread, std::filesystem::path root, std::filesystem::path programs)
    : m_mainWindow(mainWindow)
    , m_mainThread(mainThread)
    , m_root(std::move(root))
    , m_programs(std::move(programs))
{
}

AdministratorGtk::~AdministratorGtk() = default;

void AdministratorGtk::run(const std::string& script, const std::string& prompt, std::function<void(Result)> onEnd)
{
    if (m_run)
        return refuse(AdministratorError::Kind::cancelled, std::move(onEnd));
    if (!isDevelopmentRoot(m_root))
        return refuse(AdministratorError::Kind::unavailable, std::move(onEnd));
    if (script.contains('\0')) // The shell would get the part before it and carry that out.
        return refuse(AdministratorError::Kind::notCompiled, std::move(onEnd));
    m_run = std::make_unique<Run>(Run { .script = script, .onEnd = std::move(onEnd) });
    ask(prompt);
}

void AdministratorGtk::refuse(AdministratorError::Kind reason, std::function<void(Result)> onEnd)
{
    m_mainThread.post(m_life.guard(
        [reason, onEnd = std::move(onEnd)] { onEnd(std::unexpected(AdministratorError { .kind = reason })); }));
}

void AdministratorGtk::ask(const std::string& prompt)
{
    constexpr int widthInCharacters = 48;
    constexpr int spacing = 12;
    m_run->dialog = std::make_unique<Gtk::Dialog>("Administrator", true);
    auto& dialog = *m_run->dialog;
    auto& label = *Gtk::make_managed<Gtk::Label>(validUtf8(prompt), Gtk::ALIGN_START);
    label.set_line_wrap(true);
    label.set_max_width_chars(widthInCharacters);
    auto& password = *Gtk::make_managed<Gtk::Entry>();
    password.set_visibility(false);
    password.set_input_purpose(Gtk::INPUT_PURPOSE_PASSWORD);
    password.set_activates_default(true);
    password.get_accessible()->set_name("Password");
    m_run->password = &password;
    auto& complaint
        = *Gtk::make_managed<Gtk::Label>("The password is empty. Type it, or choose Cancel.", Gtk::ALIGN_START);
    complaint.get_accessible()->set_role(Atk::ROLE_NOTIFICATION);
    complaint.set_no_show_all(true);
    m_run->complaint = &complaint;
    password.signal_changed().connect([&complaint, &password] {
        complaint.hide();
        password.get_accessible()->set_description("");
    });
    auto& content = *dialog.get_content_area();
    content.set_spacing(spacing);
    content.set_border_width(spacing);
    content.pack_start(label);
    content.pack_start(password);
    content.pack_start(complaint);
    dialog.add_button("Cancel", Gtk::RESPONSE_CANCEL);
    dialog.add_button("OK", Gtk::RESPONSE_OK);
    dialog.set_default_response(Gtk::RESPONSE_OK);
    dialog.set_resizable(false);
    if (m_mainWindow.get_visible())
        dialog.set_transient_for(m_mainWindow);
    else
        dialog.set_position(Gtk::WIN_POS_CENTER);
    dialog.signal_response().connect([this](int response) { answer(response); });
    content.show_all();
    dialog.present();
    password.grab_focus();
}

void AdministratorGtk::answer(int response)
{
    if (!m_run || !m_run->dialog->get_visible())
        return;
    const bool confirms = response == Gtk::RESPONSE_OK;
    if (confirms && m_run->password->get_text_length() == 0) {
        m_run->complaint->show();
        m_run->password->get_accessible()->set_description(m_run->complaint->get_text());
        m_run->password->error_bell();
        m_run->password->grab_focus();
        return;
    }
    // GtkEntryBuffer overwrites what is deleted from it, and nobody has read it.
    m_run->password->set_text("");
    m_run->dialog->hide();
    if (confirms)
        begin();
    else
        end(std::unexpected(AdministratorError { .kind = AdministratorError::Kind::cancelled }));
}

void AdministratorGtk::begin()
{
    if (const auto prepared = prepareStandInPrograms(m_root, m_programs); !prepared)
        return end(failed(prepared.error().message));
    auto shell = ShellProcess::start(m_run->script,
        { .folder = m_root, .searchPath = standInSearchPath(m_root), .root = m_root },
        [this](ShellEnd ended) { end(resultOf(std::move(ended))); });
    if (!shell)
        return end(failed(shell.error()));
    m_run->shell = *std::move(shell);
}

void AdministratorGtk::end(Result result)
{
    // The dialog or the shell is in the middle of its own signal, so the run goes later too.
    m_mainThread.post(m_life.guard(
        [run = std::shared_ptr<Run>(std::move(m_run)), result = std::move(result)] { run->onEnd(result); }));
}

}
