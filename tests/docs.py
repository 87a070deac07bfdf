"""Runs what documents show: docs.py LOAMSHOW SOURCE-DIRECTORY DOCUMENT...

In a "console" block, a command that begins with "./loam run" must print the lines after it, up to a line "..."; blanks at
the end of a line do not count."""
import os
import pathlib
import re
import subprocess
import sys

loamshow, source = sys.argv[1:3]
environment = dict(os.environ, LOAM_STATE=os.path.join(source, "samples/sample-switch.json"))
for document in sys.argv[3:]:
    text = (pathlib.Path(source) / document).read_text()
    blocks = re.findall(r"```console\n\$ (\./loam run .*)\n((?:.*\n)*?)```\n", text)
    assert blocks, f"{document} shows no command"
    for command, shown in blocks:
        out = subprocess.run(command.replace("./loam run", loamshow), shell=True, cwd=source, env=environment,
                             stdout=subprocess.PIPE, check=True, text=True).stdout
        actual = [line.rstrip() for line in out.splitlines()]
        expected = shown.splitlines()
        if expected[-1] == "...":
            expected.pop()
            actual = actual[:len(expected)]
        assert actual == expected, f"{document}: {command} prints\n" + "\n".join(actual)
    print(f"{document}: {len(blocks)} commands")
