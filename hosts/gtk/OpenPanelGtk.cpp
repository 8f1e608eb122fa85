#include "gtk/OpenPanelGtk.h"

#include "base/Executor.h"
#include "gtk/GLibText.h"

#include <filesystem>
#include <utility>

namespace brevanta {

namespace {

std::string withoutSymbolicLinks(const std::string& path)
{
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

std::vector<std::string> chosenPaths(const Gtk::FileChooserDialog& dialog, OpenPanelKind kind)
{
    std::vector<std::string> paths;
    for (const auto& name : dialog.get_filenames()) {
        auto path = withoutSymbolicLinks(name);
        if (kind == OpenPanelKind::files || path.ends_with(".app"))
            paths.push_back(std::move(path));
    }
    return paths;
}

}

OpenPanelGtk::OpenPanelGtk(Gtk::Window& mainWindow, Executor& mainThread)
    : m_mainWindow(mainWindow)
    , m_mainThread(mainThread)
{
}

OpenPanelGtk::~OpenPanelGtk() = default;

void OpenPanelGtk::present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd)
{
    const auto number = m_nextNumber++;
    const auto dialog = newDialog(request);
    m_open.emplace(number, OpenDialog { dialog, request.kind, std::move(onEnd) });
    dialog->signal_response().connect([this, number](int response) { end(number, response); });
    dialog->show();
}

std::shared_ptr<Gtk::FileChooserDialog> OpenPanelGtk::newDialog(const OpenPanelRequest& request)
{
    const bool choosesFolders = request.kind == OpenPanelKind::applications;
    const auto title = request.title.empty() ? std::string("Open") : validUtf8(request.title);
    auto dialog = std::make_shared<Gtk::FileChooserDialog>(
        title, choosesFolders ? Gtk::FILE_CHOOSER_ACTION_SELECT_FOLDER : Gtk::FILE_CHOOSER_ACTION_OPEN);
    dialog->add_button("Cancel", Gtk::RESPONSE_CANCEL);
    dialog->add_button("Open", Gtk::RESPONSE_ACCEPT);
    dialog->set_default_response(Gtk::RESPONSE_ACCEPT);
    dialog->set_select_multiple(request.allowsMultiple);
    dialog->set_local_only(true);
    if (!request.directory.empty())
        dialog->set_current_folder(request.directory);
    dialog->set_modal(true);
    if (m_mainWindow.get_visible())
        dialog->set_transient_for(m_mainWindow);
    else
        dialog->set_position(Gtk::WIN_POS_CENTER);
    return dialog;
}

void OpenPanelGtk::end(int number, int response)
{
    auto ended = m_open.extract(number);
    if (ended.empty())
        return;
    const auto& [dialog, kind, onEnd] = ended.mapped();
    dialog->hide();
    auto paths = response == Gtk::RESPONSE_ACCEPT ? chosenPaths(*dialog, kind) : std::vector<std::string>();
    // The dialog is in the middle of its own signal, so it goes later too.
    m_mainThread.post(
        [open = std::move(ended.mapped()), paths = std::move(paths)]() mutable { open.onEnd(std::move(paths)); });
}

}
