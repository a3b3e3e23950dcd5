"""static_cycles.py DIRECTORY PRESET..

Estimates with llvm-mca how many cycles one pass through the hottest stretches of instructions of
each operation takes, on a core that executes in order and on one that does not. docs/benchmarks.md
tells what the estimates are worth.
"""

import re
import subprocess
import sys

import counted

# Of the cores that execute in order, llvm-mca 14 has none that knows 32-bit NEON.
IN_ORDER = "cortex-a53"
OUT_OF_ORDER = "cortex-a57"
CORES = {
    "armv7": ("thumbv7-linux-gnueabihf", [OUT_OF_ORDER]),
    "aarch64": ("aarch64-linux-gnu", [IN_ORDER, OUT_OF_ORDER]),
}
PAGE = 4096
LEAST_SHARE = 0.15  # of an operation's instructions
PASSES = 100


class Program:
    """The disassembled code of a counted program."""

    def __init__(self, preset):
        listing = subprocess.run(
            ["llvm-objdump", "-d", "-j", ".text", "--no-show-raw-insn",
             f"build/{preset}/bench/instructions/zavri_counted"],
            check=True, capture_output=True, text=True).stdout
        lines = re.findall(r"^\s*([0-9a-f]+):\s+(\S.*)$", listing, re.MULTILINE)
        self.texts = [text for _, text in lines]
        self.index_at = {int(address, 16): i for i, (address, _) in enumerate(lines)}

    def stretches(self, blocks):
        """[begin, end) of indices and executions of blocks, joined where a page parts them."""
        found = {}
        for block in blocks:
            begin = self.index_at.get(block.address)
            if begin is not None:  # else it is another library's
                found[begin] = [begin, begin + block.instructions, block.executions]
        for block in blocks:
            # An instruction that straddles two pages is a block of its own.
            if (block.address + 2) % PAGE > 4:
                continue
            rest = self.index_at.get(block.address)
            for stretch in found.values():
                if stretch[1] == rest and rest in found:
                    stretch[1] = found.pop(rest)[1]
                    break
        return sorted(found.values(), key=lambda s: (s[0] - s[1]) * s[2])

    def assembly(self, begin, end):
        """What llvm-mca reads: without comments, and every branch leads to itself."""
        lines = (re.sub(r"\s*(@|//).*", "", text) for text in self.texts[begin:end])
        return "\n".join(re.sub(r"#?-?(0x)?[0-9a-f]+ <.*>", ".", line) for line in lines)


def estimate(assembly, target, core):
    """The cycles of one pass, and how many its execution units alone take."""
    report = subprocess.run(
        ["llvm-mca", f"-mtriple={target}", f"-mcpu={core}", f"-iterations={PASSES}",
         "-resource-pressure=false", "-instruction-info=false"],
        check=True, input=assembly, capture_output=True, text=True).stdout
    total = int(re.search(r"Total Cycles:\s+(\d+)", report)[1])
    return total / PASSES, float(re.search(r"Block RThroughput:\s+([\d.]+)", report)[1])


def report(directory, preset):
    target, cores = CORES[preset.split("-")[0]]
    program = Program(preset)
    print(f"{preset:24}  share  instructions"
          + "".join(f"{core:>12}   bound a pixel" for core in cores))
    for name, operation in counted.read(directory, preset).items():
        for begin, end, executions in program.stretches(operation.blocks):
            share = (end - begin) * executions / operation.counts["total"]
            if share < LEAST_SHARE:
                break
            line = f"  {name:22} {share:6.0%} {end - begin:13}"
            for core in cores:
                cycles, bound = estimate(program.assembly(begin, end), target, core)
                line += f"{cycles:12.1f}{bound:8.1f}{cycles * executions / operation.pixels:8.3f}"
            print(line)


def main():
    directory, *presets = sys.argv[1:]
    for preset in presets:
        report(directory, preset)


main()
