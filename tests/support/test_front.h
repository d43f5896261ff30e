// Sits in front of a host in tests. A question goes to the queue of its answers, else to its function, else it
// is answered carefully; what the host asked and told is kept.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/framework/platform.h"

namespace banddesk::test {

class TestFront final : public host::CarefulFront {
 public:
  TestFront(host::HostPlatform& platform, host::FrontSeat& seat) {
    connections_.push_back(seat.take(*this));
    connections_.push_back(platform.Beeped.connect([this] { ++beeps; }));
    connections_.push_back(platform.FocusGiven.connect([this](ui::Control& c) { focus = c.Name(); }));
    connections_.push_back(platform.HelpAsked.connect([this](const auto& asked) { help.push_back(asked); }));
  }

  ui::BoxAnswer showMessage(const host::MessageShown& message) override {
    messages.push_back(message);
    if (!boxAnswers.empty()) return takeFirst(boxAnswers);
    return onMsgBox ? onMsgBox(message) : CarefulFront::showMessage(message);
  }
  std::optional<host::SaveAnswer> askWhereToSave(ui::SaveDialog& dialog) override {
    if (!saveAnswers.empty()) return takeFirst(saveAnswers);
    return onShowSave ? onShowSave(dialog) : std::nullopt;
  }
  void runForm(ui::Form& form) override {
    if (!formAnswers.empty()) return takeFirst(formAnswers)(form);
    if (onRunModal) onRunModal(form);
  }
  void showPopup(ui::MenuItem& menu, ui::MenuItem* usual) override {
    if (onShowPopup) onShowPopup(menu, usual);
  }
  bool selectColumns(host::ColumnSelection& draft) override {
    return onSelectColumns && onSelectColumns(draft);
  }
  bool sortColumns(host::ColumnSorting& draft) override { return onSortColumns && onSortColumns(draft); }
  host::StaleAnalysis decideStale(std::shared_ptr<AFLP>& analysis) override {
    return onDecideStale ? onDecideStale(analysis) : CarefulFront::decideStale(analysis);
  }
  void showReport(const host::ReportRequest& request, const std::function<std::string()>& makePage) override {
    reports.push_back(request);
    if (makesReports) makePage();
  }
  bool confirmDebugStop(std::intptr_t) override { return ++debugQuestions == 1; }
  void debugBreak() override { ++debugBreaks; }

  std::deque<ui::BoxAnswer> boxAnswers;
  std::deque<std::optional<host::SaveAnswer>> saveAnswers;
  std::deque<std::function<void(ui::Form&)>> formAnswers;

  std::function<ui::BoxAnswer(const host::MessageShown&)> onMsgBox;
  std::function<std::optional<host::SaveAnswer>(ui::SaveDialog&)> onShowSave;
  std::function<void(ui::Form&)> onRunModal;
  std::function<void(ui::MenuItem& menu, ui::MenuItem* usual)> onShowPopup;
  std::function<bool(host::ColumnSelection&)> onSelectColumns;
  std::function<bool(host::ColumnSorting&)> onSortColumns;
  std::function<host::StaleAnalysis(std::shared_ptr<AFLP>&)> onDecideStale;
  bool makesReports = false;

  std::vector<host::MessageShown> messages;
  std::vector<host::HelpShown> help;
  std::vector<host::ReportRequest> reports;
  std::string focus;  // the control that was last given the focus by code
  int beeps = 0, debugQuestions = 0, debugBreaks = 0;

 private:
  template <class Answer>
  static Answer takeFirst(std::deque<Answer>& answers) {
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }

  Connections connections_;
};

}  // namespace banddesk::test
