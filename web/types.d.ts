// What the program answers, and what the modules of the page hand to each other.

interface Resource { mimeType?: string; uri?: string; duration?: number }
interface MetaData { artist?: string; album?: string; genre?: string; date?: number }
interface Row {
  path: string;
  title: string;
  type?: number;
  containerType?: number;
  containerPlayable?: boolean;
  icon?: string;
  search?: Row;
  mediaData?: { metaData?: MetaData; resources?: Resource[] };
}
interface RowsAnswer { path: string; rowsCount: number; rowsVersion: number; roles: Row; rows: Row[] }

interface QueueItem {
  path: string;
  title: string;
  artist: string;
  album: string;
  icon: string;
  url: string;
  seconds: number;
}

/** Rows of something, some of them not read yet. */
interface Source<T> extends EventTarget {
  /** -1 while nobody knows. */
  readonly total: number;
  get(index: number): T | undefined;
  /** Says which rows are looked at; others may be forgotten. */
  need(first: number, last: number): void;
}

/** How a list shows its rows. */
interface Look<T> {
  /** In pixels; a width of 0 means one row a line. */
  readonly height: number;
  readonly width: number;
  make(): HTMLElement;
  fill(element: HTMLElement, row: T | undefined, index: number): void;
}

interface Crumb { path: string; title: string }

interface PlayerState {
  available: boolean;
  active: boolean;
  position: number;
  count: number;
  title: string;
  artist: string;
  icon: string;
  path: string;
  time: number;
  duration: number;
  paused: boolean;
  volume: number;
  message: string;
}
