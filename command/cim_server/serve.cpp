#include "command/cim_server/serve.h"

#include <unistd.h>

#include <csignal>
#include <iostream>

#include "command/base/privileges.h"
#include "command/base/remark.h"
#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/cim_server/answer_keeper.h"
#include "command/cim_server/cim_operations.h"
#include "command/cim_server/collecting_worker.h"
#include "command/cim_server/http_mapping.h"
#include "command/cim_server/http_server.h"
#include "command/collection/collection.h"
#include "command/collection/memory_budget.h"
#include "command/collection/plugin_library.h"
#include "command/machine/captured_machine.h"
#include "command/report/json_report.h"
#include "embedded_host/schema.h"

namespace {

constexpr std::chrono::seconds kGrace(5);  // for the starter to say that a collection took too long

TRequest MakeRequest() {
  TRequest request;
  for (const TClassDeclaration& declaration : GetSchema()) request.emplace_back(declaration.name);
  return request;
}

std::string MakeLine(const TServeOptions& options) {
  const TMachine machine = options.machine ? ReadCapturedMachine(*options.machine)
                                           : MakeThisMachine(options.edidSource, options.xconfigSource);
  const TAnswer answer = Collect(machine, options.plugin, {MakeRequest()}, [](const TLogEntry&) {});
  for (const std::string& note : answer.notes) ShowRemark(note);
  return MakeMachineLine("", answer);
}

/// What a collector does.
TMachineLine CollectLine(const TServeOptions& options) {
  if (options.machine) DropPrivileges(true);  // a captured machine only has to be read
  OnThrowingPlugin([](const std::string& reason) { TWorker::EndWith({MakeErrorLine("", ToMessage(reason)), true}); });
  try {
    return {WithinMemory([&] { return MakeLine(options); }), false, true};
  } catch (const std::exception& error) {
    return {MakeErrorLine("", ToMessage(error.what())), true, true};
  }
}

void GiveUpPrivileges() {
  DropPrivileges(false);
  if (geteuid() == 0) throw TUnusable("root's rights cannot be given up; run displayinfo serve as another user");
}

/// The listening process: HTTP on one side, the worker on the other.
class TServing {
 public:
  explicit TServing(const TServeOptions& options)
      : m_options(options),
        m_worker([options](const std::string&) { return CollectLine(options); }, options.timeout, CanReplaceWorker()),
        m_server((GiveUpPrivileges(), options.address), options.port),
        m_keeper(
            options.maxAge, [this] { Collect(); }, std::chrono::steady_clock::now) {}

  void Run() {
    WriteStandardOutput("http://" + GetAddress() + "/root/cimv2\n");
    m_keeper.Start();
    m_server.Run([this](const THttpRequest& request, const THttpServer::TReply& reply) { Answer(request, reply); });
  }

 private:
  /// A worker that is started later has the rights of this process, which are none.
  static bool CanReplaceWorker() { return geteuid() != 0; }

  std::string GetAddress() const {
    const bool isVersion6 = m_options.address.find(':') != std::string::npos;
    return (isVersion6 ? "[" + m_options.address + "]" : m_options.address) + ":" + std::to_string(m_server.GetPort());
  }

  void Collect() {
    if (auto failed = m_worker.Begin()) return Put(std::move(*failed));
    WaitForWorker();
    m_server.StartTimer(m_options.timeout + kGrace, [this] {
      m_server.Unwatch();  // before its descriptor is closed
      Put(m_worker.GiveUp());
    });
  }

  void WaitForWorker() {
    m_server.WatchOnce(m_worker.GetDescriptor(), [this] {
      auto collected = m_worker.Take();
      if (!collected) return WaitForWorker();
      m_server.StopTimer();
      Put(std::move(*collected));
    });
  }

  void Put(TCollected collected) {
    collected.failure = ToMessage(collected.failure);
    if (collected.model == nullptr) std::cerr << "displayinfo: collecting failed: " << collected.failure << '\n';
    m_keeper.Put(std::move(collected));
  }

  void Answer(const THttpRequest& request, const THttpServer::TReply& reply) try {
    const TCimRequest operation = ReadHttpRequest(request);
    if (!NeedsInstances(operation)) {
      return reply(MakeHttpAnswer(request, AnswerCim(operation, TCimModel(), GetHost(request, GetAddress()))));
    }
    m_keeper.Ask([=](const TCollected& collected) {
      reply(MakeHttpAnswer(request, collected.model == nullptr
                                        ? AnswerFailure(operation, collected.failure)
                                        : AnswerCim(operation, *collected.model, GetHost(request, GetAddress()))));
    });
  } catch (const TRefused& refused) {
    reply(MakeRefusal(refused));
  }

  TServeOptions m_options;
  TCollectingWorker m_worker;
  THttpServer m_server;
  TAnswerKeeper m_keeper;  // goes before the server, whose connections wait in it
};

}  // namespace

void Serve(const TServeOptions& options) {
  RequirePlugin(options.plugin);
  // A name that is mistyped must not leave a server that seems to be well. What is wrong in a machine, clients are
  // told.
  std::error_code error;
  if (options.machine && !std::filesystem::exists(*options.machine, error)) ReadCapturedMachine(*options.machine);
  TServing(options).Run();
}
