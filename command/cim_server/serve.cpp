#include "command/cim_server/serve.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>

#include "command/base/privileges.h"
#include "command/base/remark.h"
#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/base/xml_text.h"
#include "command/cim_server/answer_keeper.h"
#include "command/cim_server/cim_operations.h"
#include "command/cim_server/collecting_worker.h"
#include "command/cim_server/http_mapping.h"
#include "command/cim_server/http_server.h"
#include "command/cim_server/listening.h"
#include "command/collection/budgets.h"
#include "command/collection/collection.h"
#include "command/collection/plugin_library.h"
#include "command/machine/captured_machine.h"
#include "command/machine/graphics_events.h"
#include "command/report/answer_view.h"
#include "command/report/empty_classes.h"
#include "command/report/json_report.h"
#include "embedded_host/schema.h"

namespace {

constexpr std::chrono::seconds kGrace(5);  // for the starter to report that a collection took too long

/// What people should know of the answer, a sentence each.
std::vector<std::string> ListAllRemarks(const TMachine& machine, const TAnswer& answer) {
  std::vector<std::string> remarks = ListRemarks(machine, answer);
  for (const TRequestAnswer& request : answer.requests) {
    for (const EPart part : {EPart::kVideo, EPart::kMonitors}) {
      for (const std::string& gap : ExplainGaps(answer, request, part)) remarks.push_back(gap);
    }
  }
  return remarks;
}

/// True if two object paths differ only in characters that XML does not allow.
bool HasLookAlikes(const TAnswer& answer) {
  std::map<std::string, const std::string*> paths;  // by the text that clients would see
  for (const TRequestAnswer& request : answer.requests) {
    for (const auto& instance : request.instances) {
      const std::string& path = instance->GetPathText();
      if (*paths.emplace(ToXmlText(path), &path).first->second != path) return true;
    }
  }
  return false;
}

/// The remarks, a line each, then the line of the answer.
std::string MakeLines(const TServeOptions& options) {
  const TMachine machine = options.machine ? ReadCapturedMachine(*options.machine)
                                           : MakeThisMachine(options.edidSource, options.xconfigSource);
  const TAnswer answer = Collect(machine, options.plugin, {ListAllClasses()}, [](const TLogEntry&) {});
  std::string lines;
  for (const std::string& remark : ListAllRemarks(machine, answer)) lines += ToMessage(remark) + "\n";
  return lines + MakeMachineLine(answer.identity.systemName, answer, ELogPart::kLeftOut,
                                 HasLookAlikes(answer) ? NumberXmlText : nullptr);
}

/// Called in the collector.
TMachineLine CollectLine(const TServeOptions& options) {
  if (options.machine) DropPrivileges(true);  // a captured machine only has to be read
  OnThrowingPlugin([](const std::string& reason) { TWorker::EndWith({MakeErrorLine("", ToMessage(reason)), true}); });
  try {
    return {WithinMemory([&] { return MakeLines(options); }), false, true};
  } catch (const std::exception& error) {
    return {MakeErrorLine("", ToMessage(error.what())), true, true};
  }
}

void GiveUpPrivileges() {
  DropPrivileges(false);
  if (geteuid() == 0) throw TUnusable("root's rights cannot be given up; run displayinfo serve as another user");
}

TCollectingWorker StartWorker(const TServeOptions& options) {
  LetNobodyEndProcesses();  // the server will be the user nobody, and must be able to end what it starts here
  // A worker that is started later has only the rights that this process has by then: none.
  return TCollectingWorker([options](const std::string&) { return CollectLine(options); }, options.timeout,
                           geteuid() != 0);
}

std::vector<TDescriptor> FindListeners(const TServeOptions& options) {
  std::vector<TDescriptor> passed = TakePassedSockets();
  return passed.empty() ? Listen(options.addresses, options.port) : std::move(passed);
}

/// Writes a line of the log for a request.
void LogClient(const THttpRequest& request, const std::string& operation, const std::string& status) {
  const std::string agent = request.GetHeader("User-Agent");
  ShowRemark(request.client + " (" + (agent.empty() ? "no user agent" : agent) + "): " + operation + ": " + status);
}

/// Tells people each remark once, when it becomes true.
class TNews {
 public:
  void Tell(const TCollected& collected) {
    if (collected.failure != m_failure) {
      ShowRemark(collected.failure.empty() ? "collecting works again" : "collecting failed: " + collected.failure);
      m_failure = collected.failure;
    }
    if (collected.model == nullptr) return;
    for (const std::string& remark : collected.remarks) {
      if (std::find(m_remarks.begin(), m_remarks.end(), remark) == m_remarks.end()) ShowRemark(remark);
    }
    m_remarks = collected.remarks;
  }

 private:
  std::string m_failure;
  std::vector<std::string> m_remarks;
};

/// Events of this machine; nothing for a captured one, or if they cannot be heard. Without events, an answer is kept
/// until it is too old.
std::optional<TGraphicsEvents> ListenToGraphics(const TServeOptions& options) try {
  if (options.machine) return std::nullopt;
  return std::optional<TGraphicsEvents>(std::in_place);
} catch (const TUnusable& failure) {
  ShowRemark(std::string(failure.what()) + "; answers are kept until they are too old");
  return std::nullopt;
}

/// The listening process: HTTP on one side, the worker on the other.
class TServing {
 public:
  explicit TServing(const TServeOptions& options)
      : m_options(options),
        m_worker(StartWorker(options)),
        m_listeners((GiveUpPrivileges(), FindListeners(options))),
        m_address(GetAddress(m_listeners.front())),
        m_server(std::move(m_listeners)),
        m_keeper(
            options.maxAge, [this] { Collect(); }, std::chrono::steady_clock::now,
            [this](std::chrono::milliseconds time, std::function<void()> wake) {
              m_wakeTimer = m_server.StartTimer(time, std::move(wake));
            }) {}

  void Run() {
    if (m_events) {
      m_server.Watch(m_events->GetDescriptor(), [this] {
        if (m_events->Take()) m_keeper.Drop();
      });
    }
    WriteStandardOutput("http://" + m_address + "/root/cimv2\n");
    TellReady();
    m_keeper.Start();
    m_server.Run([this](const THttpRequest& request, const THttpServer::TReply& reply) { Answer(request, reply); });
  }

 private:
  void Collect() {
    if (auto failed = m_worker.Begin()) return Put(std::move(*failed));
    WaitForWorker();
    m_timer = m_server.StartTimer(m_options.timeout + kGrace, [this] {
      m_server.Unwatch();  // before its descriptor is closed
      Put(m_worker.GiveUp());
    });
  }

  void WaitForWorker() {
    m_server.WatchOnce(m_worker.GetDescriptor(), [this] {
      auto collected = m_worker.Take();
      if (!collected) return WaitForWorker();
      m_timer.reset();
      Put(std::move(*collected));
    });
  }

  void Put(TCollected collected) {
    collected.failure = ToMessage(collected.failure);
    m_news.Tell(collected);
    m_keeper.Put(std::move(collected));
  }

  void Answer(const THttpRequest& request, const THttpServer::TReply& reply) try {
    const TCimRequest operation = ReadHttpRequest(request);
    const auto answer = [=](const TCimAnswer& made) {
      if (m_options.logsClients) {
        LogClient(request, operation.operation, made.error == 0 ? "done" : "error " + std::to_string(made.error));
      }
      reply(MakeHttpAnswer(request, made.xml));
    };
    const std::string host = GetHost(request, m_address);
    if (!NeedsInstances(operation)) return answer(AnswerCim(operation, TCimModel(), m_enumerations, host));
    const auto tell = [=](const TCollected& collected) {
      answer(collected.model == nullptr ? AnswerFailure(operation, collected.failure)
                                        : AnswerCim(operation, *collected.model, m_enumerations, host));
    };
    m_keeper.Ask({tell, [reply] { return reply.IsWanted(); }});
  } catch (const TRefused& refused) {
    if (m_options.logsClients) {
      LogClient(request, "no operation", "HTTP " + std::to_string(refused.GetStatus()) + ", " + refused.what());
    }
    reply(MakeRefusal(refused));
  }

  TServeOptions m_options;
  TCollectingWorker m_worker;
  std::optional<TGraphicsEvents> m_events = ListenToGraphics(m_options);
  std::vector<TDescriptor> m_listeners;  // empty once the server has them
  std::string m_address;                 // the first address that it listens on
  THttpServer m_server;
  THttpServer::TTimer m_timer;      // of a collection
  THttpServer::TTimer m_wakeTimer;  // of the keeper
  TNews m_news;
  TEnumerations m_enumerations;
  TAnswerKeeper m_keeper;
};

}  // namespace

void Serve(const TServeOptions& options) {
  RequirePlugin(options.plugin);
  // A mistyped name must not give a server that seems to work. Other faults of a machine are reported to clients.
  std::error_code error;
  if (options.machine && !std::filesystem::exists(*options.machine, error)) ReadCapturedMachine(*options.machine);
  TServing(options).Run();
}
