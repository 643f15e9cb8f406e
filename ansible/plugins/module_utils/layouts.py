# Copyright: the ZOLEX developers
"""The layouts of a plan as lines, and what it loses as a text."""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

GB = 1024 ** 3


def layout_lines(plan, side):
    """The layout of each controller, 'before' or 'after': a line for each array and spare."""
    lines = []
    for each in plan['controllers']:
        lines.append('controller %d  %s' % (each['number'], each['model']))
        lines += ['  ' + line for line in controller_lines(plan, each, side) or ['nothing']]
    return '\n'.join(lines) + '\n'


def controller_lines(plan, controller, side):
    """As the rehearsal saw it; where there was none, as the plan tells it."""
    steps = [step for step in plan.get('steps') or [] if step['controller'] == controller['number']]
    rehearsed = plan['rehearsal']['layouts']
    first = ((controller.get('before') or {}).get('layout_sha256'))
    last = steps[-1]['expected_after']['layout_sha256'] if steps else first
    if first in rehearsed and last in rehearsed:
        return rehearsed[first if side == 'before' else last]
    if not steps:
        side = 'before'
    return told_lines(controller.get(side) or {})


def told_lines(layout):
    """An array with its logical drives in a line, and each spare."""
    lines = []
    for array in layout.get('arrays') or []:
        drives = [each if isinstance(each, str) else each['location'] for each in array['drives']]
        levels = [each['raid_type'] for each in layout['logical_drives']
                  if each['array'] == array['id']]
        lines.append('%s: %s' % (', '.join(levels) or 'no logical drive', ' '.join(drives)))
    return lines + ['hot spare: ' + each['location'] for each in layout.get('hotspares') or []]


def losses_text(destroys):
    """ "this destroys 1 logical drive (271.0 GB): LD 1 RAID5 on 32:2 32:3 32:4 of controller 1" """
    items = destroys['items']
    volumes = [each for each in items if each['kind'] == 'logical_drive']
    others = len(items) - len(volumes)
    size = destroys['capacity_bytes'] / float(GB)
    counts = ['%d logical drive%s (%.1f GB)' % (len(volumes), '' if len(volumes) == 1 else 's', size)]
    if others:
        counts.append('1 hot spare or foreign drive' if others == 1
                      else '%d hot spares or foreign drives' % others)
    return 'this destroys %s: %s' % (' and '.join(counts if volumes else counts[1:]),
                                     ', '.join(loss_text(each) for each in items))


def loss_text(loss):
    if loss['kind'] == 'logical_drive':
        return 'LD %s %s on %s of controller %d' % (loss['id'], loss['raid_type'],
                                                    ' '.join(loss['drives']), loss['controller'])
    return '%s %s of controller %d' % ('hot spare' if loss['kind'] == 'hotspare' else loss['kind'],
                                       loss['id'] or ' '.join(loss['drives']), loss['controller'])
