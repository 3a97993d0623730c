# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Tests how a trace of arm64 code is read, and how its blocks are joined into paths."""

import sys
import unittest

sys.path.insert(0, sys.argv.pop(1))
import arm_model  # noqa: E402
import arm_trace  # noqa: E402

ROW, BODY, REST = "00000000000000a0", "00000000000000b0", "00000000000000c0"
LOG = """IN: startOfCount
0x10:  d503201f  nop
Trace 0: 0x7f [01/0000000000000010/00/00] startOfCount
IN: row
0xa0:  d2800000  movz     x0, #0
0xa4:  14000001  b        #0xa8
Trace 0: 0x7f [01/00000000000000a0/00/00] row
IN: row
0xb0:  4e228420  add      v0.16b, v1.16b, v2.16b
Trace 0: 0x7f [01/00000000000000b0/00/00] row
Trace 0: 0x7f [01/00000000000000b0/00/00] row
Trace 0: 0x7f [01/0000000000000020/00/00] endOfCount
Trace 0: 0x7f [01/00000000000000a0/00/00] row
Trace 0: 0x7f [01/0000000000000010/00/00] startOfCount
Trace 0: 0x7f [01/00000000000000b0/00/00] row
Trace 0: 0x7f [01/0000000000000020/00/00] endOfCount
"""


def work_of(*blocks):
    log = ["Trace 0: 0x7f [01/0/00/00] startOfCount\n"]
    log += [f"Trace 0: 0x7f [01/{block}/00/00] row\n" for block in blocks]
    return arm_trace.read_log(log + ["Trace 0: 0x7f [01/0/00/00] endOfCount\n"])[1][0]


class Trace(unittest.TestCase):
    def test_blocks_between_markers_are_counted(self):
        code, works = arm_trace.read_log(LOG.splitlines(keepends=True))
        self.assertEqual(["d2800000", "14000001"], code[ROW])
        self.assertEqual([{ROW: 1, BODY: 2}, {BODY: 1}], [dict(work.blocks) for work in works])
        self.assertEqual(1, works[0].pairs[ROW, BODY])
        self.assertEqual([4, 1], [arm_model.instructions(work, code) for work in works])


class Paths(unittest.TestCase):
    CODE = {ROW: ["r"], BODY: ["b"] * 2, REST: ["c"] * 3}

    def test_a_loop_of_two_blocks_is_one_path(self):
        paths = arm_model.paths(work_of(*[BODY, REST] * 20, ROW), self.CODE)
        self.assertEqual([(("c", "c", "c", "b", "b"), 20), (("r",), 1)], paths)

    def test_blocks_that_follow_one_another_are_joined(self):
        paths = arm_model.paths(work_of(*[ROW, BODY, REST, "end"] * 2), {**self.CODE, "end": []})
        self.assertEqual([(("r", "b", "b", "c", "c", "c"), 2)], paths)

    def test_a_loop_of_one_block_stays_alone(self):
        paths = arm_model.paths(work_of(*[ROW] + [BODY] * 20), self.CODE)
        self.assertEqual([(("b", "b"), 20), (("r",), 1)], paths)

    def test_alternatives_are_not_joined(self):
        paths = arm_model.paths(work_of(*[ROW, BODY, ROW, REST] * 20), self.CODE)
        self.assertEqual({("r",): 40, ("b", "b"): 20, ("c", "c", "c"): 20}, dict(paths))

    def test_nearly_all_instructions_are_covered(self):
        hot = arm_model.hot_paths(work_of(*[BODY] * 100, ROW), self.CODE)
        self.assertEqual([(("b", "b"), 100)], hot)


class Modelled(unittest.TestCase):
    def test_calls_are_jumps(self):
        self.assertEqual(["b\t#-64"], arm_model.as_modelled("bl\t#-64"))
        self.assertEqual(["br\tx3"], arm_model.as_modelled("blr\tx3"))
        self.assertEqual(["bls\t#8"], arm_model.as_modelled("bls\t#8"))

    def test_stores_update_addresses_on_their_own(self):
        self.assertEqual(["str\tq0, [x1]", "add x1, x1, #16"], arm_model.as_modelled("str\tq0, [x1], #16"))
        self.assertEqual(["st1\t{ v0.8b }, [x1]", "add x1, x1, x2"], arm_model.as_modelled("st1\t{ v0.8b }, [x1], x2"))
        self.assertEqual(["stp\tx29, x30, [sp]", "add sp, sp, #-32"],
                         arm_model.as_modelled("stp\tx29, x30, [sp, #-32]!"))
        for text in ("str\tq0, [x1]", "str\tq0, [x1, #16]", "str\tw0, [x1, w2, uxtw #2]", "ldr\tq0, [x1], #16"):
            self.assertEqual([text], arm_model.as_modelled(text))


class Limit(unittest.TestCase):
    def test_every_byte_is_moved_once(self):
        traffic = arm_model.image_traffic(1000, 1000, 3000)
        self.assertEqual((8, 24), tuple(sum(line.startswith(what) for line in traffic) for what in ("ldr", "str")))
        self.assertEqual(9, len(arm_model.image_traffic(1000, 1000, 125)))
        self.assertEqual(8, len(arm_model.image_traffic(1000, 0, 1000)))


if __name__ == "__main__":
    unittest.main()
