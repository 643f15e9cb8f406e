# Copyright: the ZOLEX developers
"""What the modules have in common in their documentation."""

from __future__ import absolute_import, division, print_function
__metaclass__ = type


class ModuleDocFragment(object):
    """Options of all modules, of those that look at a machine, and of those that take policies."""

    DOCUMENTATION = r'''
options:
  executable:
    description:
      - The program C(zolexctl) on the host that the module runs on, by its place or by its name along
        the search path.
    type: path
    default: zolexctl
  timeout:
    description:
      - How many seconds everything may take.
      - When they are over, C(zolexctl) is told to end behind the command at work, and ten seconds later
        to end at once. A utility of a controller that was started is never ended. What was begun is gone
        on with by the next run.
    type: int
    default: 1800
requirements:
  - python >= 3.6
  - zolexctl of the same release
author:
  - ZOLEX developers (@zolex)
'''

    MACHINE = r'''
options:
  utilities:
    description:
      - The folder of C(UTIL.BAT) and of the controller makers' utilities. Without it they are looked for
        along the search path by their usual names.
    type: path
  controllers:
    description:
      - Numbers of the controllers, from 1 on. The others are not looked at. Without it, all.
    type: list
    elements: int
'''

    POLICIES = r'''
options:
  policies:
    description:
      - The policies file, on the host that the module runs on.
      - One of I(policies) and I(policies_content) is required.
    type: path
  policies_content:
    description:
      - The policies themselves, as a text. No file is made of them.
    type: str
'''
