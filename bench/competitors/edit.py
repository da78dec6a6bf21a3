"""The same edits by a script that goes through the lines: CONFIGURATION SETTINGS PIPELINES."""
import re
import sys

DEVICE_ID = "func_01&amp;ven_10ec&amp;dev_0285&amp;subsys_17aa22c6&amp;rev_1000"
VALUES = [("DeviceId:", "DeviceId:", DEVICE_ID), ("ModuleGuid:", "ModuleGuid:", "{272b1e6e-1e98-4476-b3f0-1a4654be1089}"),
          ("Subeffects_DefaultMode\" Key", "ParamId:", "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae}:5"),
          ("Subeffects_SpeechMode\" Key", "ParamId:", "{6696ec45-ca78-414a-8666-C9ed965acfee}:5")]
OFF = ["OrvexZan_Lfx_Mfx_Apo", None], [None, "OrvexZan_Efx_Apo"], []
ON = ["OrvexZan_Sfx_Apo"], ["OrvexZan_SPATIALF"], []


def toggle(lines, name, tag, on):
    """The first block that holds the name."""
    at = next((i for i, line in enumerate(lines) if f'Name="{name}"' in line), None)
    if at is None:
        return
    start = next(i for i in range(at, -1, -1) if f"<{tag}" in lines[i])
    end = next(i for i in range(at, len(lines)) if f"</{tag}>" in lines[i])
    if on and lines[start].startswith("<!--"):
        lines[start] = lines[start][4:]
        lines[end] = lines[end].replace("-->", "", 1)
    elif not on and not lines[start].startswith("<!--"):
        lines[start] = "<!--" + lines[start]
        lines[end] = re.sub(r"(\r?\n)$", r"-->\1", lines[end])


for index, path in enumerate(sys.argv[1:4]):
    with open(path, encoding="latin-1", newline="") as file:
        content = file.readlines()
    for keyword, value_tag, value in VALUES:
        for number, line in enumerate(content):
            if keyword in line and value_tag in line:
                content[number] = re.sub(value_tag + '[^"]*"', lambda _: value_tag + value + '"', line, count=1)
                break
    element = ("ParameterBlock", "ConfigurableDomain", "")[index]
    for block in OFF[index]:
        if block:
            toggle(content, block, element, False)
    for block in ON[index]:
        toggle(content, block, element, True)
    with open(path, "w", encoding="latin-1", newline="") as file:
        for line in content:
            file.write(line)
