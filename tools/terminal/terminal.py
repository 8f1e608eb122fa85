#!/usr/bin/env python3
"""Takes the commands that are typed while scripts/run shows the client, a line each, and hands each to the stand-in that
it is for: those that begin with `system` to brevanta-system, those with `web` to the web server, all others to the
blocking service. `diagnose` starts the client's program for a diagnosis in these surroundings. `quit` ends the client by
SIGTERM. The end of standard input ends nothing else."""

import argparse
import os
import signal
import socket
import subprocess
import sys

OWN_HELP = """
  system COMMAND                              changes what stands for the Mac's system, for instance 'system filter off'
  web COMMAND                                 tells the web server, for instance 'web refuse'
  system help, web help                       what these two know
  diagnose                                    says how everything is, and what to do about it
  help                                        these lines
  quit                                        ends the client and all that was started with it
"""
OWN_COMMANDS = {"help", "quit"}  # They stand for another thing in the service's own help.


def is_last_line(line):
    return line == "ok" or line.startswith(("ok ", "error: "))


def ask(path, line, absent):
    """The lines of the answer of whoever listens on the Unix-domain socket; `absent` where nobody does."""
    try:
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(path)
            connection.sendall(os.fsencode(line + "\n"))
            lines = []
            for answer in connection.makefile(encoding="utf-8", errors="replace"):
                lines.append(answer.rstrip("\n"))
                if is_last_line(lines[-1]):
                    return lines
            return lines + ["error: it ended before it had answered"]
    except (FileNotFoundError, ConnectionRefusedError):
        return [f"error: {absent}"]
    except OSError as error:
        return [f"error: {error.strerror or error}"]


def run(program, words):
    """The output of a program that is run to its end, as the lines of an answer."""
    try:
        done = subprocess.run([*program, *words], capture_output=True, encoding="utf-8", errors="replace", check=False)
    except (OSError, ValueError) as error:
        return [f"error: {error}"]
    if done.returncode == 0:
        return [*done.stdout.splitlines(), "ok"]
    return ["error: " + done.stderr.strip().removeprefix(os.path.basename(program[0]) + ": ")]


def diagnosis(program):
    """What the client's program finds; that something needs the user, status 1, is no failure."""
    try:
        done = subprocess.run([program, "--diagnose"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              encoding="utf-8", errors="replace", check=False)
    except OSError as error:
        return [f"error: {error}"]
    return [*done.stdout.splitlines(), "ok"]


def answer(line, options):
    if line == "diagnose":
        return diagnosis(options.program)
    first, _, rest = line.partition(" ")
    if first == "system":
        return run([options.system, "--root", options.root], rest.split())
    if first == "web":
        return ask(options.web, rest, "the web server does not run")
    lines = ask(options.service, line, options.absent)
    if line != "help":
        return lines
    kept = [each for each in lines if each.startswith(" ") and each.split()[0] not in OWN_COMMANDS]
    return [*(kept or lines), *OWN_HELP.strip("\n").splitlines()]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--service", required=True, metavar="SOCKET")
    parser.add_argument("--absent", required=True, metavar="TEXT", help="what is said while no service listens there")
    parser.add_argument("--web", required=True, metavar="SOCKET")
    parser.add_argument("--client", required=True, type=int, metavar="PROCESS")
    parser.add_argument("--program", required=True, metavar="PROGRAM", help="the client's")
    parser.add_argument("--system", required=True, metavar="PROGRAM")
    parser.add_argument("--root", required=True, metavar="DIRECTORY", help="what the program changes")
    options = parser.parse_args()
    sys.stdin.reconfigure(errors="surrogateescape")
    for line in map(str.strip, sys.stdin):
        if line == "quit":
            os.kill(options.client, signal.SIGTERM)
            return
        if line:
            print("\n".join(answer(line, options)), flush=True)


if __name__ == "__main__":
    main()
