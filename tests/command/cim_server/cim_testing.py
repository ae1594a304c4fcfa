"""What the scripts that test displayinfo serve have in common: a server of one's own, requests, and answers read by
a parser that is not the server's."""
import http.client
import json
import os
import re
import select
import subprocess
import tempfile
import xml.etree.ElementTree as ElementTree

NAMESPACE = "root/cimv2"
REPLACED = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]")  # what XML 1.0 does not have


def list_session(session):
    """The processes of that session, without those that have ended and that nobody has asked for their status."""
    members = []
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/stat") as file:
                state, _, _, its_session = file.read().rsplit(")", 1)[1].split()[:4]
        except OSError:
            continue
        if int(its_session) == session and state != "Z":
            members.append(int(name))
    return members


def require_no_process_left(session):
    """What the server started ends with it, though the system may need a moment to say so."""
    for member in list_session(session):
        try:
            process = os.pidfd_open(member)
        except ProcessLookupError:
            continue
        readable, _, _ = select.select([process], [], [], 20)
        os.close(process)
        assert readable, f"process {member} outlives the server that started it"
    assert not list_session(session), list_session(session)


class Server:
    """displayinfo serve on a free port, for as long as a with statement lasts. It must be there at its end, and leave no
    process."""

    def __init__(self, command, *options):
        self.errors = tempfile.TemporaryFile(mode="w+")
        self.process = subprocess.Popen([command, "serve", "--port", "0", *options], stdout=subprocess.PIPE,
                                        stderr=self.errors, text=True, start_new_session=True)
        self.url = self.process.stdout.readline().strip()
        assert self.url, f"the server says no address: {self.read_errors()}"
        self.address = self.url.split("/")[2]
        self.answers = set()

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        is_there = self.process.poll() is None
        self.process.terminate()
        status = self.process.wait(timeout=60)
        require_no_process_left(self.process.pid)
        if kind is None:
            assert is_there and status == 0, f"the server ended with status {status}: {self.read_errors()}"
            require_valid(self.answers)

    def read_errors(self):
        self.errors.seek(0)
        return self.errors.read()

    def connect(self):
        return http.client.HTTPConnection(self.address, timeout=60)

    def post(self, body, connection=None, method="POST", **headers):
        """Status, headers and body of the answer. A header's name is written with _ for -."""
        used = connection or self.connect()
        all_headers = {"CIMOperation": "MethodCall", "Content-Type": 'application/xml; charset="utf-8"'}
        all_headers.update({name.replace("_", "-"): value for name, value in headers.items()})
        used.request(method, "/cimom", body.encode() if isinstance(body, str) else body,
                     {name: value for name, value in all_headers.items() if value is not None})
        answer = used.getresponse()
        content = answer.read()
        if connection is None:
            used.close()
        if answer.status == 200:
            self.answers.add(content)
        return answer.status, answer.headers, content

    def call(self, operation, parameters="", namespace=NAMESPACE):
        """IRETURNVALUE of an operation, or the number of its CIM error."""
        status, _, content = self.post(make_request(operation, parameters, namespace))
        assert status == 200, (status, content)
        response = ElementTree.fromstring(content).find(".//IMETHODRESPONSE")
        error = response.find("ERROR")
        return int(error.get("CODE")) if error is not None else response.find("IRETURNVALUE")


def make_request(operation, parameters="", namespace=NAMESPACE):
    path = "".join(f'<NAMESPACE NAME="{part}"/>' for part in namespace.split("/"))
    return (f'<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="7" '
            f'PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="{operation}"><LOCALNAMESPACEPATH>{path}'
            f"</LOCALNAMESPACEPATH>{parameters}</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>")


def class_name(name, parameter="ClassName"):
    return f'<IPARAMVALUE NAME="{parameter}"><CLASSNAME NAME="{name}"/></IPARAMVALUE>'


def flag(parameter, value="TRUE"):
    return f'<IPARAMVALUE NAME="{parameter}"><VALUE>{value}</VALUE></IPARAMVALUE>'


def ask(command, machine):
    """The answer in JSON."""
    text = subprocess.run([command, "--machine", machine, "--format", "json", "--log-level", "error"], check=True,
                          stdout=subprocess.PIPE).stdout.decode()
    return json.loads(text)


def find_instances(answer):
    """The instances by their paths: of each path the last commit, at the place of the first."""
    return {instance["path"]: instance for instance in answer["requests"][0]["instances"]}


def collect(command, machine):
    return list(find_instances(ask(command, machine)).values())


def collect_with_outputs(command, machine):
    """The same, and what the server makes of `outputs`."""
    answer = ask(command, machine)
    instances = find_instances(answer)
    with open(os.path.join(machine, "machine.json")) as file:
        system = json.load(file)["systemName"]
    outputs = [made for output in answer["outputs"] for made in describe_output(output, system, instances.values())]
    return [*instances.values(), *outputs]


def make_instance(name, properties, keys):
    escape = str.maketrans({"\\": "\\\\", '"': '\\"'})
    path = ",".join('%s="%s"' % (key, str(properties[key]["value"]).translate(escape)) for key in keys)
    return {"class": name, "path": f"{name}.{path}", "properties": dict(sorted(properties.items()))}


def describe_output(output, system, instances):
    """DI_Output, and DI_OutputMonitor where an instance stands for the output."""
    modes = output.get("modes", [])
    largest = modes[0] if modes else {}
    texts = {key[0].upper() + key[1:]: output.get(key)
             for key in ("connector", "path", "identity", "serial", "maker", "name", "deviceID", "reason")}
    numbers = {"Unit": output["unit"], "LargestWidth": largest.get("width"), "LargestHeight": largest.get("height")}
    properties = {name: {"type": "string", "value": text} for name, text in {"SystemName": system, **texts}.items()}
    properties.update({name: {"type": "uint32", "value": number} for name, number in numbers.items()})
    fastest = max((mode["refresh"] for mode in modes), default=None)
    properties["HighestRefresh"] = {"type": "real32", "value": fastest}
    made = make_instance("DI_Output", properties, ("SystemName", "Unit"))
    yield made
    for instance in instances:
        if instance["class"] == "QRXSG_DesktopMonitor" and \
                instance["properties"]["DeviceID"]["value"] == output["deviceID"]:
            roles = {"Antecedent": instance["path"], "Dependent": made["path"]}
            links = {role: {"type": "reference", "value": path} for role, path in roles.items()}
            yield make_instance("DI_OutputMonitor", links, ("Antecedent", "Dependent"))
            return


def clean(value):
    if isinstance(value, str):
        return REPLACED.sub("\ufffd", value)
    return [clean(element) for element in value] if isinstance(value, list) else value


def read_value(element, kind):
    """The JSON value of a property of that type, out of its VALUE, VALUE.ARRAY or VALUE.REFERENCE."""
    child = element[0] if len(element) else None
    if child is None:
        return None
    if child.tag == "VALUE.ARRAY":
        return [convert(value.text or "", kind.removesuffix("[]")) for value in child]
    return read_path(child[0]) if child.tag == "VALUE.REFERENCE" else convert(child.text or "", kind)


def convert(text, kind):
    if kind == "boolean":
        return {"TRUE": True, "FALSE": False}[text]
    if kind == "real32":
        assert "." in text
        return float(text)
    return int(text) if kind.startswith("uint") else text


def read_path(name):
    """The path, as JSON shows it, of an INSTANCENAME."""
    keys = []
    for binding in name:
        child = binding[0]
        text = read_path(child[0]) if child.tag == "VALUE.REFERENCE" else child.text or ""
        escaped = text.replace("\\", "\\\\").replace('"', '\\"')
        keys.append(f'{binding.get("NAME")}="{escaped}"')
    return f'{name.get("CLASSNAME")}.{",".join(keys)}'


def check_instance(element, expected):
    """An INSTANCE against the JSON of the same instance: class, names, types and values."""
    assert element.get("CLASSNAME") == expected["class"]
    properties = expected["properties"]
    assert sorted(property.get("NAME") for property in element) == sorted(properties)
    for property in element:
        wanted = properties[property.get("NAME")]
        kind = "reference" if property.tag == "PROPERTY.REFERENCE" else property.get("TYPE")
        kind += "[]" if property.tag == "PROPERTY.ARRAY" else ""
        assert kind == wanted["type"] or wanted["value"] is None, (kind, wanted)
        value = read_value(property, kind)
        assert value == clean(wanted["value"]), (property.get("NAME"), value, wanted)


def make_hostile_machine(office, folder):
    """Copies a machine, and gives it names of markup, control bytes and bytes that are no text."""
    subprocess.run(["cp", "--recursive", f"{office}/.", folder], check=True)
    name = b"<b>&amp;'>]]><!--\x01\x1b\x7f\xc2\x9b\xff\xfe\xef\xbf\xbf\\ %s\t\xe4"
    with open(f"{folder}/machine.json", "w") as file:
        json.dump({"systemName": "a\"b\\c<&>'\x02\ufffe\r\nd, e=\"f\" ü",
                   "bios": {"units": {"0": {"connector": "]]>\x02\"<b>\\&\n", "path": "\ufffe'<!--\x1b"}}}}, file)
    with open(f"{folder}/root/etc/X11/xorg.conf", "wb") as file:
        file.write(b'Section "Device"\n Identifier "%s"\n BoardName "%s"\n BusID "%s"\n VideoRam 4096\nEndSection\n'
                   b'Section "Screen"\n Identifier "Main"\n Device "%s"\n Monitor "%s"\nEndSection\n'
                   b'Section "Monitor"\n Identifier "%s"\n ModelName "%s"\nEndSection\n' % ((name,) * 7))
    with open(f"{folder}/edid/0.bin", "r+b") as file:
        data = bytearray(file.read())
        data[54 + 36 + 5:54 + 36 + 18] = b'"><\x03&\xff\\"\x0c\x1b]]>'  # the name of the first monitor
        file.seek(0)
        file.write(data)


def list_examples(examples):
    return sorted(os.path.join(examples, name) for name in os.listdir(examples)
                  if os.path.exists(os.path.join(examples, name, "machine.json")))


def require_valid(answers):
    """Holds the answers against what the server may send, with xmllint."""
    dtd = os.path.join(os.path.dirname(os.path.abspath(__file__)), "cim_answers.dtd")
    with tempfile.TemporaryDirectory() as folder:
        files = []
        for number, answer in enumerate(answers):
            files.append(os.path.join(folder, f"{number}.xml"))
            with open(files[-1], "wb") as file:
                file.write(answer)
        for first in range(0, len(files), 1000):
            subprocess.run(["xmllint", "--noout", "--nonet", "--dtdvalid", dtd, *files[first:first + 1000]], check=True)
