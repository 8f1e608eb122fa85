#!/usr/bin/env python3
# Types lines into the terminal of scripts/run and expects the answers of the real stand-ins, before there is a service,
# while there is one, and after it has ended.
# Usage: check-terminal.py TERMINAL BREVANTA-SERVICE BREVANTA-SYSTEM
import signal
import subprocess
import sys
import tempfile

terminal, service, system = sys.argv[1:]
faults = []


def started(*arguments, **options):
    return subprocess.Popen(arguments, stdout=subprocess.PIPE, encoding="utf-8", **options)


with tempfile.TemporaryDirectory() as folder, started("sleep", "60") as client:
    control, web = f"{folder}/control", f"{folder}/web"
    typed = started(sys.executable, terminal, "--service", control, "--absent", "not there yet", "--web", web,
                    "--client", str(client.pid), "--program", "echo", "--system", system, "--root", folder,
                    stdin=subprocess.PIPE)

    def expect(answers):
        for line, expected in answers:
            print(line, file=typed.stdin, flush=True)
            answer = typed.stdout.readline().rstrip("\n")
            if answer != expected:
                faults.append(f"{line!r} was answered {answer!r}, not {expected!r}")

    expect([("energy 5", "error: not there yet"), ("web port", "error: the web server does not run")])
    with started(service, "--socket", f"{folder}/socket", "--control", control) as running:
        running.stdout.readline()  # It listens.
        expect([("energy 5", "ok"), ("\n  get energy ", "ok 5.0"), ("fly", "error: unknown command 'fly' (see help)"),
                ("system filter approve", "error: no copy of the extension waits for approval"),
                ("system filter on", "ok"), ("system fly", "error: unknown command 'fly' (see help)"),
                ("get energy", "ok 5.0")])
        print("diagnose\nhelp\nget energy", file=typed.stdin, flush=True)
        lines = list(iter(lambda: typed.stdout.readline().rstrip("\n"), "ok 5.0"))
        if lines[:2] != ["--diagnose", "ok"]:
            faults.append(f"a diagnosis is answered {lines[:2]}")
        for command in ("energy COINS", "await", "system COMMAND", "web COMMAND", "diagnose", "help", "quit"):
            if sum(line.startswith(f"  {command} ") for line in lines) != 1:
                faults.append(f"help has not one line for {command}: {lines}")
        running.terminate()
    expect([("energy 5", "error: not there yet")])
    print("quit", file=typed.stdin, flush=True)
    if client.wait() != -signal.SIGTERM or typed.wait() != 0:
        faults.append("quit does not end the client and the terminal")

sys.exit("\n".join(faults) or 0)
